"""Running kivconv, and an independent view of its charsets."""
import array
import fcntl
import functools
import os
import subprocess
import sys
import tempfile
import termios
import time
import unittest

# The converter reads and decodes blocks of this size.
BLOCK = 64 * 1024

CHARSETS = ["UTF-8", "CESU-8", "UTF-16BE", "UTF-16LE", "US-ASCII", "ISO-8859-1"]

# Python's codecs for charsets that it does not know by their names.
CODECS = {"Windows-31J": "cp932", "x-mswin-936": "gbk", "x-windows-949": "cp949",
          "x-windows-950": "cp950", "windows-874": "cp874", "x-iso-8859-11": "iso8859-11"}

NATIONAL = [*(f"ISO-8859-{n}" for n in [*range(2, 11), 13, 14, 15, 16]), "KOI8-R", "KOI8-U",
            *(f"windows-{n}" for n in range(1250, 1259)), "Shift_JIS", "GBK", "GB18030",
            "Big5", "Big5-HKSCS", *CODECS]


def program():
    path = os.environ.get("KIVCONV")
    if not path:
        sys.exit("set KIVCONV to the path of the program")
    return os.path.abspath(path)


def encode(text, charset):
    """The bytes of the text, by Python's own codecs."""
    if charset == "CESU-8":
        units = array.array("H", text.encode("utf-16-le", "surrogatepass"))
        return b"".join(chr(unit).encode("utf-8", "surrogatepass") for unit in units)
    return text.encode(CODECS.get(charset, charset))


@functools.cache
def characters_of(charset):
    """Letters and ideographs of a national charset, where it and Python's codec agree."""
    # The codecs prefer other duplicates, and have symbols, Cyrillic letters and kana more.
    disputed = {"Windows-31J": [0xED, 0xEE], "x-windows-950": [0xA2, 0xC6, 0xC7]}
    characters = []
    for first, last in [(0xA1, 0x2AF), (0x370, 0x6FF), (0xE01, 0xE5B), (0x3041, 0x30F6),
                        (0x4E00, 0x9FA5), (0xAC00, 0xD7A3), (0x20000, 0x2A6D6)]:
        for character in map(chr, range(first, last + 1)):
            try:
                data = encode(character, charset)
                if (data[0] not in disputed.get(charset, []) and
                        data.decode(CODECS.get(charset, charset)) == character):
                    characters.append(character)
            except UnicodeEncodeError:
                pass
    return characters


class Result:
    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err


def run(*args, stdin=b"", env=None):
    """Runs the program to its end; the arguments may be text or bytes."""
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    environment.pop("KIV_DEFAULT_CHARSET", None)
    environment.update(env or {})
    done = subprocess.run([program(), *args], input=stdin, capture_output=True,
                          env=environment, timeout=120)
    return Result(done.returncode, done.stdout, done.stderr.decode("utf-8", "replace"))


def start(*args, **how):
    return subprocess.Popen([program(), *args], stdin=subprocess.PIPE, **how)


def feed(process, data):
    """Writes to the program and waits until it has read all of it."""
    process.stdin.write(data)
    process.stdin.flush()
    waiting = array.array("i", [1])
    end = time.monotonic() + 60
    while waiting[0] and process.poll() is None:
        if time.monotonic() > end:
            raise TimeoutError("the program does not read")
        fcntl.ioctl(process.stdin.fileno(), termios.FIONREAD, waiting)


class ProgramTest(unittest.TestCase):
    """A test with a folder of its own as the current one."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def write(self, name, data):
        with open(name, "wb") as file:
            file.write(data)
        return name

    def read(self, name):
        with open(name, "rb") as file:
            return file.read()

    def expect(self, result, status, out=None, err=None):
        """err: the whole of standard error, or a list of parts in it."""
        self.assertEqual(result.status, status, result.err)
        if out is not None and result.out != out:
            self.fail(f"{len(result.out)} bytes {result.out[-60:]!r} instead of "
                      f"{len(out)} bytes {out[-60:]!r}")
        if isinstance(err, str):
            self.assertEqual(result.err, err)
        for part in err if isinstance(err, list) else []:
            self.assertIn(part, result.err)
