#pragma once

namespace NSdo {

/// What the functions of the engine return. The values are fixed; traces and owners show them.
enum SdoStatus : int {
  SDO_OK = 0,
  SDO_E_ARG = 0x1001,             ///< null pointer, channel 0, index out of range, equal COB-IDs, bad node-ID
  SDO_E_COBID_IN_USE = 0x1002,    ///< COB-ID belongs to another channel or is in the receive filter already
  SDO_E_LIST = 0x1004,            ///< a list could not take the entry (allocation)
  SDO_E_NOT_FOUND = 0x1005,       ///< a look-up found no channel
  SDO_E_NOMEM = 0x1007,           ///< allocation of a record failed
  SDO_E_DRIVER_OPEN = 0x1009,     ///< the driver gave no handle
  SDO_E_SEND = 0x100A,            ///< transmit queue full
  SDO_E_DRIVER_CONFIG = 0x100B,   ///< the driver refused its configuration
  SDO_E_DRIVER_INIT = 0x100C,     ///< the driver layer could not be started: no transmit hook
  SDO_E_STATE = 0x100E,           ///< local node neither operational nor pre-operational
  SDO_E_NO_CLIENT = 0x2001,       ///< no client layer
  SDO_E_NO_CHANNEL = 0x2003,      ///< no such channel
  SDO_E_EXISTS = 0x2004,          ///< the client layer or the channel exists already
  SDO_E_NOT_CONFIGURED = 0x2005,  ///< a COB-ID of the channel is not valid
  SDO_E_CONFIGURED = 0x2006,      ///< the channel is configured already
  SDO_E_BUSY = 0x2007,            ///< a transfer is under way (start), or none is (abort)
  SDO_E_OD_MISSING = 0x5001,      ///< no local object dictionary
  SDO_E_OD_FREE = 0x5002,      ///< the local object dictionary could not be freed: one of its callbacks runs
  SDO_E_OD_READ = 0x5003,      ///< reading refused; an abort index says why
  SDO_E_OD_WRITE = 0x5004,     ///< writing refused; an abort index says why
  SDO_E_OD_NO_ENTRY = 0x5005,  ///< no entry for the index, or no callback
};

}  // namespace NSdo
