#include "common/event_subscription.h"

#include <utility>

#include "common/host_application.h"

namespace NCommon {

void EventSubscription::Begin(REFIID sinkIid, IUnknown* sink) {
  End();
  const auto application = HostApplication();
  if (!application) return;
  application->FindEventSource(sinkIid, mSource.Receive());
  if (mSource && FAILED(mSource->Advise(sink, &mCookie))) mSource.Reset();
}

// The source is let go of first: the host may come back here while it forgets the sink.
void EventSubscription::End() {
  const auto source = std::move(mSource);
  if (source) source->Unadvise(mCookie);
}

}  // namespace NCommon
