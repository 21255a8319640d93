// The disk on which the data layer of this program works.
#pragma once

#include "jet/disk/file.h"

namespace power_loss {

/// Puts a disk in the place of the operating system's as long as it lives. This program brings its own
/// jet::posixFileSystem() along, so everything that asks for the real one gets this one.
class DiskInForce
{
public:
    explicit DiskInForce(jet::FileSystem& disk);
    DiskInForce(const DiskInForce&) = delete;
    DiskInForce& operator=(const DiskInForce&) = delete;
    ~DiskInForce();
};

} // namespace power_loss
