#include "VProfile.h"

// The scalar instances of the program, compiled once here.
template class VProfile<unsigned char>;
template class VProfile<short>;
template class VProfile<unsigned short>;
template class VProfile<int>;
template class VProfile<unsigned int>;
template class VProfile<unsigned long>;
template class VProfile<bool>;
