#pragma once

namespace data {

/// Makes the compiled dictionaries and their sources known to the program. The module is a static
/// library, whose resources a program sees only when something asks for them; may be called often.
void initDictionaryResources();

}  // namespace data
