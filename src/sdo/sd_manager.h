#pragma once

#include <list>
#include <memory>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "sdk/sdo_observation.h"
#include "sdo/connection.h"

namespace NSdo {

/// Follows the SDO uploads of other devices by the default SDO identifiers of nodes 1 to 127 and hands the
/// values that interest its delegate to it.
class ZCANopenSDManager final
    : public NCom::Implements<NSdk::ICANopenSDManager, NSdk::ICANopenSDManagerOwner> {
 public:
  HRESULT STDMETHODCALLTYPE ProcessMessage(NSdk::ICANMessage* message) override;
  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Tick(std::uint32_t elapsed_ms) override;
  HRESULT STDMETHODCALLTYPE SetDelegate(NSdk::ICANopenSDManagerDelegate* delegate) override;

 private:
  using Connections = std::list<std::unique_ptr<ZSDOConnection>>;

  struct Frame {
    std::uint32_t cobId = 0;
    std::uint32_t channel = 0;
    NCommon::MessageData data;
  };

  void OnRequest(const Frame& frame);
  void OnUploadRequest(const Frame& frame);
  bool IsWanted(const Frame& frame);
  void Offer(const Frame& frame, std::uint32_t sizeHint);
  void Settle(Connections::iterator connection);

  NCom::ComPtr<NSdk::ICANopenSDManagerDelegate> mDelegate;
  Connections mConnections;  // in order of their creation, at most one for each request COB-ID
};

}  // namespace NSdo
