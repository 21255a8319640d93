// A main for fuzz targets without libFuzzer: runs a corpus, then mutations of it for a while.
//
//   TARGET [--seconds N] [--seed N] FILE-OR-FOLDER...
//
// An input that crashes, or takes longer than kSecondsPerInput, is written to crash-PID in the current folder; run the
// target with that file to see it again.
#include "fuzz/fuzz_driver.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

extern "C" {
// Sanitizers' own, where the program is built with them.
__attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());
// No input is worth an allocation of that size.
const char* __asan_default_options();
const char* __asan_default_options()
{
    return "max_allocation_size_mb=256";
}
}

namespace {

using Input = std::vector<std::uint8_t>;

constexpr unsigned kSecondsPerInput = 20;
constexpr rlim_t kMemory = rlim_t{1} << 30U;

// Read when the process is about to die, so plain and global.
const std::uint8_t* currentData = nullptr;
std::size_t currentSize = 0;

void saveCurrentInput()
{
    std::array<char, 32> name{"crash-"};
    *std::to_chars(name.data() + 6, name.data() + name.size() - 1, getpid()).ptr = '\0';
    const int file = ::open(name.data(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file >= 0) {
        for (std::size_t done = 0; done < currentSize;) {
            const ssize_t written = ::write(file, currentData + done, currentSize - done);
            if (written <= 0) {
                break;
            }
            done += static_cast<std::size_t>(written);
        }
        ::close(file);
    }
}

void onSignal(int number)
{
    saveCurrentInput();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void watchForTheEnd()
{
    std::signal(SIGALRM, onSignal);
    std::signal(SIGABRT, onSignal);
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(saveCurrentInput);
        return;
    }
    std::signal(SIGSEGV, onSignal);
    std::signal(SIGILL, onSignal);
    const rlimit limit{kMemory, kMemory};
    setrlimit(RLIMIT_DATA, &limit);
}

void run(const Input& input)
{
    currentData = input.data();
    currentSize = input.size();
    alarm(kSecondsPerInput);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    alarm(0);
}

Input read(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Changes bytes the way damage and the structures of a page suggest: single bits, numbers at the edge of their range,
/// pieces copied to another place, left out or taken from another input, an end cut off.
class Mutator
{
public:
    explicit Mutator(std::uint64_t seed) : random_(seed) {}

    Input mutate(const std::vector<Input>& corpus)
    {
        Input input = corpus[below(corpus.size())];
        for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
            change(input, corpus);
        }
        return input;
    }

private:
    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

    /// Mostly in the first bytes of a page, where its structure is.
    std::size_t place(const Input& input)
    {
        constexpr std::size_t page = 4096;
        const std::size_t position = below(input.size());
        if (input.size() >= page && below(2) == 0) {
            return std::min(input.size() - 1, position / page * page + below(64));
        }
        return position;
    }

    void putNumber(Input& input)
    {
        static constexpr std::array<std::uint32_t, 12> kEdges{
            0, 1, 0x7F, 0x80, 0xFF, 0x0FFF, 0x1000, 0x7FFF, 0x8000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        const std::size_t position = place(input);
        const std::uint32_t number =
            below(3) == 0 ? static_cast<std::uint32_t>(below(256)) : kEdges.at(below(kEdges.size()));
        const std::size_t width = std::size_t{1} << below(3);
        for (std::size_t i = 0; i < width && position + i < input.size(); ++i) {
            input[position + i] = static_cast<std::uint8_t>(number >> (8 * i));
        }
    }

    void change(Input& input, const std::vector<Input>& corpus)
    {
        if (input.empty()) {
            input.resize(1 + below(64));
        }
        const std::size_t length = std::min<std::size_t>(input.size(), 1 + below(below(8) == 0 ? 4096 : 16));
        const auto at = [&](std::size_t position) { return input.begin() + static_cast<std::ptrdiff_t>(position); };
        switch (below(8)) {
        case 0:
        case 1:
            input[place(input)] ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 2:
        case 3:
        case 4:
            putNumber(input);
            break;
        case 5: {
            const Input piece(at(input.size() - length), at(input.size()));
            const std::size_t to = below(input.size() - length + 1);
            std::copy(piece.begin(), piece.end(), at(to));
            break;
        }
        case 6: {
            const Input& other = corpus[below(corpus.size())];
            const std::size_t from = other.empty() ? 0 : below(other.size());
            const Input piece(other.begin() + static_cast<std::ptrdiff_t>(from),
                              other.begin() + static_cast<std::ptrdiff_t>(std::min(other.size(), from + length)));
            if (below(2) == 0) {
                input.insert(at(below(input.size() + 1)), piece.begin(), piece.end());
            } else {
                const std::size_t count = std::min(piece.size(), input.size());
                std::copy_n(piece.begin(), count, at(std::min(place(input), input.size() - count)));
            }
            break;
        }
        default:
            if (below(4) == 0) {
                input.resize(below(input.size() + 1));
            } else if (below(2) == 0) {
                const std::size_t from = below(input.size() - length + 1);
                input.erase(at(from), at(from + length));
            } else {
                const Input copy(at(0), at(length));
                input.insert(at(below(input.size())), copy.begin(), copy.end());
            }
        }
    }

    std::mt19937_64 random_;
};

std::vector<Input> readCorpus(const std::vector<std::string>& paths)
{
    std::vector<std::filesystem::path> files;
    for (const std::string& path : paths) {
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::directory_iterator(path)) {
                files.push_back(entry.path());
            }
        } else {
            files.emplace_back(path);
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<Input> corpus;
    for (const auto& file : files) {
        corpus.push_back(read(file));
    }
    return corpus;
}

std::uint64_t number(std::string_view text)
{
    std::uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::uint64_t seconds = 0;
    std::uint64_t seed = 1;
    std::vector<std::string> paths;
    const std::span<char*> words(arguments, static_cast<std::size_t>(argumentCount));
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (word == "--seconds" && i + 1 < words.size()) {
            seconds = number(words[++i]);
        } else if (word == "--seed" && i + 1 < words.size()) {
            seed = number(words[++i]);
        } else {
            paths.emplace_back(word);
        }
    }
    const std::vector<Input> corpus = readCorpus(paths);
    if (corpus.empty()) {
        std::cerr << "There is no corpus to start from.\n";
        return 2;
    }
    watchForTheEnd();
    for (const Input& input : corpus) {
        run(input);
    }
    std::cout << "corpus: " << corpus.size() << " inputs\n" << std::flush;

    Mutator mutator(seed);
    std::uint64_t runs = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (std::chrono::steady_clock::now() < end) {
        run(mutator.mutate(corpus));
        ++runs;
    }
    std::cout << "mutations: " << runs << " inputs in " << seconds << " seconds, seed " << seed << "\n";
    return 0;
}
