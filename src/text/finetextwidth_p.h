#ifndef OVELIN_FINETEXTWIDTH_P_H
#define OVELIN_FINETEXTWIDTH_P_H

namespace ovelin {

// The integer that a measured size becomes: truncated towards zero, and the nearest int where the
// size lies outside their range. All arithmetic with positions that callers choose goes through it,
// as doubles hold every sum of ints.
int toInt(double value);

// The fine width of a text with that advance.
int fineWidth(double advance);

} // namespace ovelin

#endif
