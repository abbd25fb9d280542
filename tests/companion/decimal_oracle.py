"""Checks lines "name operands result"; the last is "end of lines". NaNs follow the library."""

import decimal
import sys
from decimal import Context, Decimal

# By the digits of a pattern: precision, bias, largest exponent, bits of the coefficient.
FORMATS = {8: (7, 101, 191, 23), 16: (16, 398, 767, 53), 32: (34, 6176, 12287, 113)}
CONTEXTS = {
    length: Context(prec=p, Emin=p - 1 - bias, Emax=p - 1 + top - bias, clamp=1, traps=[],
                    rounding=decimal.ROUND_HALF_EVEN)
    for length, (p, bias, top, _) in FORMATS.items()
}
EXACT = Context(prec=30000, Emin=-999999, Emax=999999, traps=[])
MODES = [decimal.ROUND_HALF_EVEN, decimal.ROUND_DOWN, decimal.ROUND_CEILING,
         decimal.ROUND_FLOOR, decimal.ROUND_HALF_UP]
CLASSES = ("sNaN NaN -Infinity -Normal -Subnormal -Zero +Zero +Subnormal +Normal "
           "+Infinity").split()


def decode(pattern):
    (p, bias, _, n), width, bits = FORMATS[len(pattern)], 4 * len(pattern), int(pattern, 16)
    sign, head = "-" if bits >> width - 1 else "", bits >> width - 6 & 31
    if head == 31:
        payload = bits & (1 << n - 3) - 1
        kind = "sNaN" if bits >> width - 7 & 1 else "NaN"
        return Decimal(f"{sign}{kind}{payload if payload < 10 ** (p - 1) else 0}")
    if head == 30:
        return Decimal(sign + "Infinity")
    large = bits >> width - 3 & 3 == 3
    m = n - 2 if large else n
    coefficient = bits & (1 << m) - 1 | large << n
    exponent = (bits >> m & (1 << width - 1 - n) - 1) - bias
    return Decimal(f"{sign}{coefficient if coefficient < 10 ** p else 0}e{exponent}")


def encode(value, length):
    p, bias, _, n = FORMATS[length]
    sign, digits, exponent = value.as_tuple()
    bits = number = int("".join(map(str, digits)) or "0")
    if value.is_nan():
        bits = 0x7C << 4 * length - 8 | (number if len(digits) < p else 0)
    elif value.is_infinite():
        bits = 0x78 << 4 * length - 8
    elif number >> n:
        bits = 3 << 4 * length - 3 | exponent + bias << n - 2 | number & (1 << n - 2) - 1
    else:
        bits |= exponent + bias << n
    return f"#{sign << 4 * length - 1 | bits:0{length}x}"


def to_text(x, conversion, plus, alternate, precision):
    sign = "-" if x.is_signed() else "+" * (plus != "0")
    kind, p, x = conversion.lower(), int(precision), x.copy_abs()
    whole = kind == "g" and p < 0
    if not x.is_finite():
        number = "nan" if x.is_nan() else "inf"
    else:
        x = x if x or whole else Decimal(0)
        p = len(x.as_tuple().digits) if whole else max(p, 1) if kind == "g" else p if p >= 0 else 6
        number, _, exponent = format(x, f".{p - (kind == 'g')}e").partition("e")
        exponent = int(exponent) if x else x.adjusted()
        scientific = kind == "e" or kind == "g" and not -4 <= exponent < p
        if not scientific:
            number = format(x, f".{p - 1 - exponent if kind == 'g' else p}f")
        number += "." * (alternate == "1" and "." not in number)
        if kind == "g" and not whole and alternate == "0" and "." in number:
            number = number.rstrip("0").rstrip(".")
        number += f"e{exponent:+03}" * scientific
    return sign + (number.upper() if conversion.isupper() else number)


def to_integer(x, bits):
    whole = int(x) if x.is_finite() else 1 << bits
    return whole if -(1 << bits - 1) <= whole < 1 << bits - 1 else -(1 << bits - 1)


NUMERIC = {  # not a method of Context; the first NaN is the result
    "Remainder": lambda c, x, y: EXACT.remainder_near(x, y),
    "NextUp": Context.next_plus,
    "NextDown": Context.next_minus,
    "RoundExact": lambda c, x, mode: x.to_integral_value(MODES[int(mode)]),
    "Rint": lambda c, x, mode: x.to_integral_value(MODES[int(mode)]),
    "RoundHalfUp": lambda c, x: x.to_integral_value(decimal.ROUND_HALF_UP),
    "ScaleB": lambda c, x, n: c.create_decimal(EXACT.scaleb(x, int(n))),
}
OTHER = {  # NaNs are not special, or in another way
    "MinNum": Context.min,  # a quiet NaN gives way to a number
    "MaxNum": Context.max,
    "Class": lambda c, x: CLASSES.index(c.number_class(x)),
    "IsInfinite": lambda c, x: int(x.is_infinite()),
    "IsNaN": lambda c, x: int(x.is_nan()),
    "LogB": lambda c, x: (2**31 - 1 if x.is_infinite() else
                          x.adjusted() if x.is_finite() and x else -(2**31)),
    "Compare": lambda c, x, y: 2 if x.is_nan() or y.is_nan() else int(c.compare(x, y)),
    "QuietNotEqual": lambda c, x, y: int(x.is_nan() or y.is_nan() or c.compare(x, y) != 0),
    "SameQuantum": lambda c, x, y: int(x.same_quantum(y)),
    "ToInt32": lambda c, x: to_integer(x, 32),
    "ToInt64": lambda c, x: to_integer(x, 64),
    "Format": lambda c, *fields: to_text(*fields),
}


def expected(name, operands, got):
    length = len(got if got[0] == "#" else operands[0]) - 1
    operands = [decode(x[1:]) if x[0] == "#" else x for x in operands]
    nans = [x for x in operands if isinstance(x, Decimal) and x.is_nan()]
    function = (NUMERIC | OTHER).get(name) or getattr(Context, name.lower(), Context.create_decimal)
    both = len(nans) == 2 or any(map(Decimal.is_snan, nans))
    yields = name in OTHER and not ("Num" in name and both)
    value = nans[0] if nans and not yields else function(CONTEXTS[length], *operands)
    return encode(value, length) if isinstance(value, Decimal) else str(value)


failures = 0
for line in sys.stdin:
    name, *operands, got = line.split()
    if name != "end" and (want := expected(name, operands, got)) != got:
        failures += 1
        print(f"{line.strip()}, not {want}", file=sys.stderr)
sys.exit(failures != 0 or line != "end of lines\n")
