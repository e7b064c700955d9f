// qon-tour: a short walk through what the library does, one section per subsystem.
#include <cstdio>

#include "tour.h"

int main() {
    std::printf("qon tour\n========\n\n");
    tour_vector_math();
    tour_exp();
    tour_elementary();
    tour_higher_functions();
    tour_complex();
    tour_streams();
    tour_generators();
    tour_distributions();
    tour_statistics();
    tour_fitting();
    return 0;
}
