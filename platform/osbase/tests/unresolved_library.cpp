// A library that calls a function which nobody defines.

extern "C" {
void vrNowhereDefined();

__attribute__((visibility("default"))) void vrCallUndefined()
{
    vrNowhereDefined();
}
}
