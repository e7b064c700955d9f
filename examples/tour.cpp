// qon-tour: a short walk through what the library does, one section per subsystem.
#include <cstdio>

#include "tour.h"

int main() {
    std::printf("qon tour\n========\n\n");
    tour_vector_math();
    return 0;
}
