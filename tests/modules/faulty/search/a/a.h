#pragma once
#include "search/b/b.h"
