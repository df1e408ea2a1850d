#pragma once

// Reasons the host passes to the module entry.
enum KrldvModuleReason { KRLDV_MODULE_DETACH = 0, KRLDV_MODULE_ATTACH = 1 };

// The library's entry: the host calls it once with ATTACH after loading the library and
// once with DETACH before unloading it. ATTACH registers the library's classes by name;
// it returns 0 when that fails (the load must then fail) and 1 otherwise.
extern "C" __attribute__((visibility("default"))) int krldvModuleEntry(int reason);
