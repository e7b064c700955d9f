#include <gtest/gtest.h>
#include <qon/qon_serv.h>
TEST(Services, Allocate) { void* p = qon_serv_allocate(10, 128); EXPECT_NE(p, nullptr); qon_serv_deallocate(p); }
