#include "support/Heap.h"

#include <malloc.h>

#include <chrono>
#include <thread>

namespace bench {

double heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double heapAtRest() {
    double heap = heapInUse();
    for (double last = -1; heap != last;) {
        last = heap;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        heap = heapInUse();
    }
    return heap;
}

}  // namespace bench
