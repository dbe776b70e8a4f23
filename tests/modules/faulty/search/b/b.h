#pragma once
#include "search/a/a.h"
