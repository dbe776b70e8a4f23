#pragma once

namespace data {}

/// The engines implement data/'s interfaces and are written in its terms.
namespace engines {
using namespace data;
}
