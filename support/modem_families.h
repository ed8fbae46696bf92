// SPDX-License-Identifier: MIT
// What the modem families are called by USB and by the kernel, once for every room.
#pragma once

constexpr int eagleVendorId = 0x1110;
constexpr int speedtouchVendorId = 0x06B9;
constexpr int unicornVendorId = 0x0483;

constexpr char eagleModule[] = "ueagle-atm";
constexpr char speedtouchModule[] = "speedtch";
constexpr char unicornModule[] = "unicorn_usb_eth";
/// The module of the family that has many vendors.
constexpr char cxacruModule[] = "cxacru";
