// Sections of the tour program, one per subsystem.
#pragma once

void tour_vector_math();
