#pragma once

#include "engines/sqlite/sqlite_handle.h"

namespace engines::embedded {
using namespace engines::sqlite;
}
