#pragma once
#include "engines/embedded/connection.h"
