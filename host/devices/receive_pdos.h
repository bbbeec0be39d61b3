#pragma once
// Receive PDOs (CiA 301, 7.2.2 and 7.5.2.35): objects that frames of others write.

#include <functional>
#include <vector>

#include "host/devices/frame_sink.h"
#include "host/devices/pdo_mapping.h"

namespace NDevices {

class ReceivePdos {
 public:
  /// Takes a new value of a mapped object.
  using Store = std::function<void(Entry& entry, BytesView value)>;

  ReceivePdos(ObjectDictionary& objects, Store store) : mObjects(objects), mStore(std::move(store)) {}

  /// Reads parameters and mappings anew; what waits for a SYNC is dropped.
  void Load();
  /// Drops what waits for a SYNC.
  void DropWaiting();

  enum class Outcome { NotForThese, Taken, TooShort };
  /// TooShort: for the mapping of one of the PDOs, which was left alone.
  Outcome OnFrame(const NSdk::CanFrame& frame);
  void OnSync();

 private:
  struct Pdo {
    std::uint32_t cobId = 0;
    bool synchronous = false;
    bool waits = false;  // for the SYNC
    NSdk::CanFrame received;
    PdoMapping mapping;
  };

  ObjectDictionary& mObjects;
  Store mStore;
  std::vector<Pdo> mPdos;
};

}  // namespace NDevices
