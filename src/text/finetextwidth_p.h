#ifndef OVELIN_FINETEXTWIDTH_P_H
#define OVELIN_FINETEXTWIDTH_P_H

namespace ovelin {

// Truncates a measured size towards zero. A size outside the range of int becomes the nearest int.
// Sums of positions that callers choose are computed as doubles, which cannot overflow, and then
// converted by this function.
int toInt(double value);

// Returns the fine width of a text with this advance. textlayout_p.h explains both terms.
int fineWidth(double advance);

} // namespace ovelin

#endif
