#include <qon/qon_serv.h>
