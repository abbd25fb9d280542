// bigint/powers.h - powers beyond the limit of the public function.

#ifndef KIV_BIGINT_POWERS_H
#define KIV_BIGINT_POWERS_H

#include <kiv/big_uint.h>

namespace kiv::bigint {

// As big_uint::pow5, for every power that has a place in a big_uint; throws
// std::length_error for others.
const big_uint& pow5(unsigned e, big_uint* buf);

}  // namespace kiv::bigint

#endif
