#include <qon/qon_serv.h>
#include <stdio.h>
int main(void) {
    void *p = qon_serv_allocate(100, 128);
    if (p == NULL || ((size_t)p % 128) != 0) return 1;
    qon_serv_deallocate(p);
    printf("1 passed, 0 failed\n");
    return 0;
}
