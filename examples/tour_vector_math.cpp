#include <cstdio>
#include "tour.h"
void tour_vector_math() { std::printf("vector math\n"); }
