// The message catalogue of the core library: the texts behind the message numbers that the
// kernel library prints. Each entry fixes the kinds of its arguments through its format.
#include <qon/qon_serv.h>

#include <cstdarg>
#include <cstdio>

namespace {
struct Message {
    int number;
    const char *format;
};

// 748-766: vector-math error reports; 773: per-thread state unavailable.
constexpr Message catalogue[] = {
    {748, "qon: %s: parameter %d is invalid\n"},
    {749, "qon: %s: an argument array is unusable\n"},
    {750, "qon: %s: argument outside the domain\n"},
    {751, "qon: %s: singularity\n"},
    {752, "qon: %s: result overflow\n"},
    {753, "qon: %s: result underflow\n"},
    {754, "qon: %s: error\n"},
    {755, "    a[%d] = %.17g\n"},
    {756, "    r[%d] = %.17g\n"},
    {757, "    a[%d] = %.17g\n"},
    {758, "    r1[%d] = %.17g\n"},
    {759, "    r2[%d] = %.17g\n"},
    {760, "    a[%d] = %.17g\n"},
    {761, "    b[%d] = %.17g\n"},
    {762, "    r[%d] = %.17g\n"},
    {763, "    a[%d] = %.17g\n"},
    {764, "    b[%d] = %.17g\n"},
    {765, "    r1[%d] = %.17g\n"},
    {766, "    r2[%d] = %.17g\n"},
    {773, "qon: cannot create the vector-math state of this thread\n"},
};
}  // namespace

extern "C" QON_API int qon_serv_print(int channel, int msg, int nargs, ...) {
    (void)nargs;
    FILE *out = channel == 1 ? stderr : stdout;
    for (const Message &m : catalogue) {
        if (m.number != msg) continue;
        va_list args;
        va_start(args, nargs);
        int printed = std::vfprintf(out, m.format, args);
        va_end(args);
        return printed;
    }
    return std::fprintf(out, "qon: message %d\n", msg);
}
