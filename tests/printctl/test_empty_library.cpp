// A library that loads but has nothing that a driver must have.
extern "C" __declspec(dllexport) int Nothing()
{
    return 0;
}
