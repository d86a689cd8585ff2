#include <libproc.h>
