// Sections of the tour program, one per subsystem.
#pragma once

void tour_vector_math();
void tour_exp();
void tour_elementary();
void tour_higher_functions();
void tour_complex();
void tour_streams();
void tour_generators();
void tour_distributions();
void tour_statistics();
void tour_fitting();
