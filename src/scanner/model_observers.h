#pragma once

#include <forward_list>

#include "com/com_ptr.h"
#include "sdk/views.h"

namespace NScanner {

/// Those who follow a model, in the order in which they came.
class ZModelObservers {
 public:
  void Add(NSdk::IModelObserver* observer);
  void Remove(NSdk::IModelObserver* observer);
  /// Raises E:"h->observer" where a null observer was added.
  void Notify(NSdk::IModel* model, std::uint32_t hint, IUnknown* object) const;

 private:
  using Observer = NCom::ComPtr<NSdk::IModelObserver>;

  bool Contains(const NSdk::IModelObserver* observer) const;

  std::forward_list<Observer> mObservers;
};

}  // namespace NScanner
