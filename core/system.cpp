#include "quorvel/kor/system.h"
int32_t kor_system_random(int32_t min, int32_t max) { return min + (max - max); }
