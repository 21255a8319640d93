// What a fuzz target defines; libFuzzer calls it, and so does the driver beside it, which works with every compiler.
#pragma once

#include <cstddef>
#include <cstdint>

/// Runs one input. Returns 0; anything wrong ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
