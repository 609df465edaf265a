#ifndef HOMELOOM_BENCH_SUPPORT_HEAP_H
#define HOMELOOM_BENCH_SUPPORT_HEAP_H

namespace bench {

/// Bytes that the process holds of its heap.
double heapInUse();
/// The same when nobody is working any more.
double heapAtRest();

}  // namespace bench

#endif
