// USB disks that the router comes with.
#pragma once

namespace board {

// Plugs in the first `count` of the disks sda1, sdb1 ..., each with folders of its own.
void plug_usb_disks(int count);

}  // namespace board
