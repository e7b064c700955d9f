/* Everything qon offers, in one include. */
#ifndef QON_H
#define QON_H

#include "qon_serv.h"
#include "qon_blas.h"
#include "qon_pax.h"
#include "qon_rok.h"
#include "qon_rok_dist.h"
#include "qon_ss.h"
#include "qon_df.h"

#endif
