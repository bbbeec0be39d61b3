#pragma once

#include "host/devices/object_dictionary.h"

namespace NDevices {

/// Objects of the built-in device, a small I/O device after CiA 401: 16 digital inputs (6000h) and outputs
/// (6200h), four analogue inputs (6401h) and outputs (6411h), with two receive and two transmit PDOs for
/// them, and objects at 2000h that give each kind of SDO transfer something to do.
///   2000h  VISIBLE_STRING, up to 64 bytes   2004h  INTEGER16, -100..100
///   2001h  DOMAIN, 4 KiB, up to 1 MiB       2005h  UNSIGNED64
///   2002h  OCTET_STRING, up to 1 MiB        2006h  REAL32, 0..1
///   2003h  UNSIGNED32, can only be written  2007h  UNSIGNED8
ObjectDictionary IoDeviceObjects(std::uint8_t nodeId);

}  // namespace NDevices
