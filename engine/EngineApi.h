#pragma once
// The typed C++ face of the library's larger computations, beside the C
// interface: the tests and benchmarks call it directly, and each exported C
// function is a thin shim over it. Only names under aqx::engine that are
// marked with AQX_TYPED_API leave the library (engine/Aquilonix.map).

#if defined(AQX_ENGINE_BUILD)
#define AQX_TYPED_API __attribute__((visibility("default")))
#else
#define AQX_TYPED_API
#endif
