#include "apple_additions.h"
