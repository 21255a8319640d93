#include "power_loss/disk_in_force.h"

#include <stdexcept>

namespace power_loss {

namespace {

jet::FileSystem* inForce = nullptr;

} // namespace

DiskInForce::DiskInForce(jet::FileSystem& disk)
{
    inForce = &disk;
}

DiskInForce::~DiskInForce()
{
    inForce = nullptr;
}

} // namespace power_loss

namespace jet {

FileSystem& posixFileSystem()
{
    if (power_loss::inForce == nullptr) {
        throw std::logic_error("No disk is in force");
    }
    return *power_loss::inForce;
}

} // namespace jet
