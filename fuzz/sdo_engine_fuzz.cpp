// Arbitrary frames, ticks and operations for the SDO client engine. The input is a list of operations, each a
// byte with its arguments behind it. Buffers are of exactly the announced size, so that the address sanitizer
// sees every byte beside them.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/input.h"
#include "sdo/engine/client.h"
#include "sdo/engine/frames.h"

namespace {

using namespace NSdo;

constexpr std::uint32_t kResponse = 0x585;
constexpr std::uint32_t kRequest = 0x605;

using NFuzz::Input;

void Require(bool condition) {
  if (!condition) std::abort();
}

// An owner of an engine who does as the input says.
class Owner {
 public:
  Owner() {
    mEngine.hooks.owner = this;
    mEngine.hooks.transmit = [](void* owner, const SdoFrame& frame) {
      return static_cast<Owner*>(owner)->Transmit(frame);
    };
    mEngine.hooks.completed = [](void* owner, std::uint8_t channel, std::uint16_t, std::uint8_t, void*,
                                 bool success) { static_cast<Owner*>(owner)->Completed(channel, success); };
  }

  void Run(Input& input) {
    SdoOpen(mEngine, input.Byte());
    // Each operation costs at least a byte; the buffers are what could grow.
    while (!input.IsEmpty() && mBuffers.size() < 64) Step(input);
  }

 private:
  void Step(Input& input) {
    switch (input.Byte() % 16) {
      case 0:
        return Feed(kResponse, input);
      case 1:
        return SdoTick(mEngine);
      case 2:
        return OwnerTransfer(input);
      case 3:
        return ChannelTransfer(input);
      case 4:
        return Reopen(input);
      case 5:
        return FeedAnything(input);
      case 6:
        return Dictionary(input);
      case 7:
        return Channels(input);
      case 8:
        SdoAbort(mEngine, input.Byte() & 3, input.Byte());
        return;
      case 9:
        mKeep = !mKeep;
        return SdoDrainTransmit(mEngine);
      case 10:
        mEngine.nodeState = input.Byte();
        return;
      case 11:
        return NextSegment(input);
      case 12:
        mReply = input.Byte();
        return;
      case 13:
        mRestarts = input.Byte() & 3;
        return;
      case 14:
        return FeedChannel(input);
      default:
        return Segments(input);
    }
  }

  SdoSent Transmit(const SdoFrame& frame) {
    Require((frame.flags & 0x0F) == 8 && frame.identifier <= kCobIdIdentifier);
    if (mKeep) return SdoSent::Keep;
    if (mReply != 0 && mFeeding < 2 && mReplies < kMaxReplies) {
      ++mReplies;
      SdoFrame answer = FrameTo(kResponse, mReply);
      std::memcpy(answer.data + 1, frame.data + 1, 7);
      ++mFeeding;
      SdoFeed(mEngine, answer);
      --mFeeding;
    }
    return SdoSent::Accepted;
  }

  void Completed(std::uint8_t channel, bool success) {
    const SdoChannel* ch = SdoFindChannel(mEngine, channel);
    Require(ch != nullptr && ch->state == SdoState::Idle);
    Require(!success || ch->transferred <= ch->size);
    if (mRestarts == 0) return;
    --mRestarts;
    SdoInitiateUpload(mEngine, channel, 0x1018, 1, 16, Buffer(16));
  }

  void* Buffer(std::uint32_t size) {
    mBuffers.push_back(std::make_unique<std::uint8_t[]>(size));
    return mBuffers.back().get();
  }

  static std::uint32_t Size(Input& input) {
    const std::uint16_t size = input.Word();
    return size < 0xF000 ? size % 300u : size;
  }

  void OwnerTransfer(Input& input) {
    const std::uint8_t how = input.Byte();
    const std::uint32_t size = Size(input);
    const std::uint16_t timeout = (how & 4) != 0 ? input.Word() : std::uint16_t{100};
    const std::uint8_t node = (how & 8) != 0 ? input.Byte() : std::uint8_t{5};
    const std::uint16_t block = how & 2;
    if ((how & 1) != 0) {
      SdoWrite(mEngine, node, 0x2000, 1, Buffer(size), size, kResponse, kRequest, timeout, block);
    } else {
      SdoRead(mEngine, node, 0x2000, 1, Buffer(size), size, kResponse, kRequest, timeout, block);
    }
  }

  void ChannelTransfer(Input& input) {
    const std::uint8_t how = input.Byte();
    const std::uint8_t channel = (how >> 2) & 3;
    const std::uint32_t size = Size(input);
    void* buffer = Buffer(size);
    switch (how & 3) {
      case 0:
        SdoInitiateUpload(mEngine, channel, 0x2000, 1, size, buffer);
        return;
      case 1:
        SdoInitiateDownload(mEngine, channel, 0x2000, 1, size, buffer);
        return;
      case 2:
        SdoInitiateBlockUpload(mEngine, channel, 0x2000, 1, size, buffer);
        return;
      default:
        SdoInitiateBlockDownload(mEngine, channel, 0x2000, 1, size, buffer);
        return;
    }
  }

  void Reopen(Input& input) {
    SdoClose(mEngine);
    SdoOpen(mEngine, input.Byte());
  }

  void Feed(std::uint32_t cobId, Input& input) {
    SdoFrame frame = FrameTo(cobId, input.Byte());
    for (int i = 1; i < 8; ++i) frame.data[i] = input.Byte();
    SdoFeed(mEngine, frame);
  }

  void FeedChannel(Input& input) { Feed(0x590u + (input.Byte() & 3), input); }

  void FeedAnything(Input& input) {
    SdoFrame frame;
    frame.identifier = input.Number();
    frame.flags = input.Number();
    for (std::uint8_t& byte : frame.data) byte = input.Byte();
    SdoFeed(mEngine, frame);
  }

  // The segment that a block upload on channel 1 waits for.
  void NextSegment(Input& input) {
    const SdoChannel* ch = SdoFindChannel(mEngine, 1);
    if (ch == nullptr) return;
    const std::uint8_t last = input.Byte() & 0x80;
    SdoFeed(mEngine, FrameTo(kResponse, static_cast<std::uint8_t>((ch->sequence + 1) | last)));
  }

  void Segments(Input& input) {
    for (int count = input.Byte(); count > 0; --count) {
      const SdoChannel* ch = SdoFindChannel(mEngine, 1);
      if (ch == nullptr) return;
      const unsigned sequence = ch->sequence + 1u;
      const bool block = ch->state == SdoState::BlockUploadReceiving;
      SdoFeed(mEngine, FrameTo(kResponse, static_cast<std::uint8_t>(block ? sequence : ch->toggle)));
    }
  }

  void Dictionary(Input& input) {
    const std::uint8_t how = input.Byte();
    const auto index = static_cast<std::uint16_t>(kClientParameterIndex + ((how >> 1) & 3));
    const std::uint8_t subindex = input.Byte();
    std::uint32_t size = (how >> 3) & 7;
    std::unique_ptr<std::uint8_t[]> data(new std::uint8_t[size]());
    std::uint8_t abortIndex = 0;
    if ((how & 1) != 0) {
      for (std::uint32_t i = 0; i < size; ++i) data[i] = input.Byte();
      SdoOdWrite(mEngine, index, subindex, size, data.get(), abortIndex);
    } else {
      SdoOdRead(mEngine, index, subindex, size, data.get(), abortIndex);
    }
  }

  void Channels(Input& input) {
    const std::uint8_t how = input.Byte();
    const std::uint8_t channel = (how >> 3) & 3;
    std::uint8_t found = 0;
    std::uint32_t code = 0;
    const std::uint32_t cobId = (how & 0x80) != 0 ? input.Number() : 0x590u + channel;
    switch (how & 7) {
      case 0:
      case 1:
        SdoCreateChannel(mEngine, channel);
        return;
      case 2:
        SdoDeleteChannel(mEngine, channel);
        return;
      case 3:
      case 4:
        SdoConfigureChannel(mEngine, channel, cobId, cobId + 0x80, 40, input.Byte());
        return;
      case 5:
        SdoReleaseChannel(mEngine, channel);
        return;
      case 6:
        SdoFindChannelByNode(mEngine, input.Byte(), found);
        return;
      default:
        SdoGetAbortCode(mEngine, channel, code);
        return;
    }
  }

  // A server that acknowledges nothing makes the engine repeat a sub-block for ever.
  static constexpr int kMaxReplies = 2000;

  std::vector<std::unique_ptr<std::uint8_t[]>> mBuffers;
  SdoEngine mEngine;
  bool mKeep = false;
  std::uint8_t mReply = 0;  // command that the transmit hook answers with, 0 = none
  int mFeeding = 0;
  int mReplies = 0;
  int mRestarts = 0;  // transfers that the completion hook starts
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Owner owner;
  owner.Run(input);
  return 0;
}
