#pragma once

namespace data {

/// Registers the compiled dictionaries and their sources. Needed because a static library's
/// resources are not registered automatically; may be called repeatedly.
void initDictionaryResources();

}  // namespace data
