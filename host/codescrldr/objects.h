#pragma once
// Loaded objects as hosts see them. They keep the description that they belong to.

#include <memory>

#include "host/codescrldr/description.h"
#include "host/runtime/com.h"

namespace NDescriptions {

using Content = std::shared_ptr<const Description>;

/// `objects` are part of the content.
HRESULT HandOutList(const Content& content, const std::vector<Object>& objects,
                    CODESCRLDR::ZCOObjectList** result);

}  // namespace NDescriptions
