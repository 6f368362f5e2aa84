// A service library that answers nothing; it lacks the function number MISSING.
#define EXPORTED(name) extern "C" __declspec(dllexport) void name()

#if MISSING != 1
EXPORTED(VpOpenRemotePrinter) {}
#endif
#if MISSING != 2
EXPORTED(VpCloseRemotePrinter) {}
#endif
#if MISSING != 3
EXPORTED(VpGetDevMode) {}
#endif
#if MISSING != 4
EXPORTED(VpFreeDevMode) {}
#endif
#if MISSING != 5
EXPORTED(VpGetDeviceCapabilities) {}
#endif
#if MISSING != 6
EXPORTED(VpFreeDeviceCapabilities) {}
#endif
#if MISSING != 7
EXPORTED(VpMakePTQuery) {}
#endif
#if MISSING != 8
EXPORTED(VpFreePTData) {}
#endif
