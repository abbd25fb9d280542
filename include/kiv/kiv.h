// kiv/kiv.h - all of the library.

#ifndef KIV_KIV_H
#define KIV_KIV_H

#include <kiv/big_uint.h>
#include <kiv/buffer.h>
#include <kiv/case_insensitive.h>
#include <kiv/char16.h>
#include <kiv/character.h>
#include <kiv/charset.h>
#include <kiv/code_points.h>
#include <kiv/decimal.h>
#include <kiv/export.h>
#include <kiv/kdecimal.h>
#include <kiv/locale.h>
#include <kiv/numconv.h>
#include <kiv/stream.h>
#include <kiv/string_ref.h>
#include <kiv/utility.h>

#endif
