#include "scanner/model_observers.h"

#include <algorithm>
#include <iterator>

#include "com/assertion.h"

namespace NScanner {

void ZModelObservers::Add(NSdk::IModelObserver* observer) {
  auto last = mObservers.before_begin();
  while (std::next(last) != mObservers.end()) ++last;
  mObservers.insert_after(last, Observer(observer));
}

// The observer is released only when the list is in order again.
void ZModelObservers::Remove(NSdk::IModelObserver* observer) {
  for (auto before = mObservers.before_begin(); std::next(before) != mObservers.end(); ++before) {
    if (std::next(before)->Get() != observer) continue;
    const Observer removed = std::move(*std::next(before));
    mObservers.erase_after(before);
    return;
  }
}

bool ZModelObservers::Contains(const NSdk::IModelObserver* observer) const {
  return std::any_of(mObservers.begin(), mObservers.end(),
                     [&](const Observer& entry) { return entry.Get() == observer; });
}

// A copy of the list is walked: who hears of a change may leave, and take others along.
void ZModelObservers::Notify(NSdk::IModel* model, std::uint32_t hint, IUnknown* object) const {
  const std::forward_list<Observer> observers = mObservers;
  for (const Observer& entry : observers) {
    NCom::Require(entry, "h->observer");
    if (Contains(entry.Get())) entry->Update(model, hint, object);
  }
}

}  // namespace NScanner
