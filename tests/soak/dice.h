// Chance that is the same for the same seed, on every machine.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace soak {

class Dice
{
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    /// From 0 to below `count`.
    [[nodiscard]] int below(int count)
    {
        // No standard distribution: each library draws from it in its own way.
        return static_cast<int>(engine_() % static_cast<std::uint64_t>(count));
    }
    [[nodiscard]] int between(int least, int most) { return least + below(most - least + 1); }
    [[nodiscard]] bool oneIn(int count) { return below(count) == 0; }

    template <typename Item>
    [[nodiscard]] const Item& oneOf(const std::vector<Item>& items)
    {
        return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
    }
    /// A key of the map, which is not empty.
    template <typename Map>
    [[nodiscard]] typename Map::key_type keyOf(const Map& map)
    {
        auto entry = map.begin();
        std::advance(entry, below(static_cast<int>(map.size())));
        return entry->first;
    }

private:
    std::mt19937_64 engine_;
};

} // namespace soak
