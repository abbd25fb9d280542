#!/usr/bin/env python3
"""How kivconv treats files, pipes and signals, and the memory it takes."""
import hashlib
import os
import re
import signal
import stat
import subprocess
import threading
import time
import unittest

from program import ProgramTest, feed, program, run, start

LATIN1 = b"na\xEFve caf\xE9\n"
UTF8 = LATIN1.decode("latin-1").encode()
FROM_LATIN1 = ["-f", "latin1", "-t", "utf-8"]


class Inputs(ProgramTest):
    def test_several_files_and_standard_input(self):
        self.write("a", LATIN1)
        self.write("b", b"")
        self.expect(run(*FROM_LATIN1, "a", "-", "b", "a", stdin=b"\xE0"), 0,
                    UTF8 + "à".encode() + UTF8, "")
        self.expect(run(*FROM_LATIN1, "-", stdin=LATIN1), 0, UTF8, "")
        self.expect(run(*FROM_LATIN1, "b"), 0, b"", "")

    def test_a_file_named_like_an_option(self):
        self.write("-c", LATIN1)
        self.expect(run(*FROM_LATIN1, "--", "-c"), 0, UTF8, "")

    def test_every_file_is_a_stream_of_its_own(self):
        # The two halves of a character do not meet, and offsets start anew.
        self.write("a", b"abc\xE2\x82")
        self.write("b", b"\xACdef")
        self.expect(run("-t", "UTF-16BE", "a", "b"), 1, "abc".encode("utf-16-be"),
                    ["kivconv: a: byte 3: E2 82"])
        self.write("a", b"abc")
        self.expect(run("-t", "utf-8", "a", "b"), 1, b"abc", ["kivconv: b: byte 0: AC"])
        self.write("a", b"abc\xE2\x82")
        self.expect(run("-t", "utf-8", "-c", "a", "b"), 0, b"abcdef",
                    ["a: 1 skipped: byte 3: E2 82", "b: 1 skipped: byte 0: AC"])

    def test_inputs_that_cannot_be_read(self):
        self.write("a", b"abc")
        os.mkdir("folder")
        self.expect(run("a", "missing", "a"), 2, b"abc",
                    "kivconv: missing: No such file or directory\n")
        self.expect(run("folder"), 2, b"", "kivconv: folder: Is a directory\n")
        with open("folder/in", "wb"):
            os.chmod("folder/in", 0)
        if not os.access("folder/in", os.R_OK):
            self.expect(run("folder/in"), 2, b"", "kivconv: folder/in: Permission denied\n")


    def test_closed_descriptors_are_not_reused(self):
        def run_closed(redirection, *args):
            return subprocess.run(["sh", "-c", f'exec "$0" "$@" {redirection}', program(), *args],
                                  stdin=subprocess.DEVNULL, capture_output=True)

        self.write("keep", b"as it was")
        self.write("euro", "€".encode())
        self.assertEqual(run_closed("<&-", "-f", "utf8", "-t", "utf8", "-o", "keep").returncode, 2)
        self.assertEqual(self.read("keep"), b"as it was")
        run_closed("2>&-", "-c", "-f", "utf8", "-t", "us-ascii", "-o", "out", "euro")
        self.assertEqual(self.read("out"), b"")  # and no message in it
        self.assertEqual(run_closed(">&-", "-f", "utf8", "-t", "utf8", "euro").returncode, 2)


class OutputFile(ProgramTest):
    def test_new_file_has_the_permissions_that_the_user_wants(self):
        before = os.umask(0o027)
        self.addCleanup(os.umask, before)
        self.expect(run(*FROM_LATIN1, "-o", "out", stdin=LATIN1), 0, b"", "")
        self.assertEqual(self.read("out"), UTF8)
        self.assertEqual(stat.S_IMODE(os.stat("out").st_mode), 0o640)

    def test_in_place(self):
        self.write("file", LATIN1)
        os.chmod("file", 0o751)
        os.symlink("file", "link")
        self.expect(run(*FROM_LATIN1, "-o", "link", "file", "link"), 0, b"", "")
        self.assertEqual(self.read("file"), UTF8 * 2)
        self.assertEqual(stat.S_IMODE(os.stat("file").st_mode), 0o751)
        self.assertTrue(os.path.islink("link"))

    def test_a_failed_conversion_changes_nothing(self):
        self.write("out", b"precious")
        self.write("in", b"abc\xFF")
        for args, status in [(["-t", "utf-16le", "in"], 1), (["in", "missing"], 1),
                             (["missing"], 2), (["-t", "ascii", "--replacement=é", "in"], 2)]:
            self.expect(run("-o", "out", *args), status)
            self.expect(run("-o", "new", *args), status)
            self.assertEqual(sorted(os.listdir()), ["in", "out"])
            self.assertEqual(self.read("out"), b"precious")

    def test_outputs_that_cannot_be_written(self):
        os.mkdir("folder")
        os.symlink("nothing", "link")
        for path, reason in [("folder", "Is a directory"), ("folder/", "Is a directory"),
                             ("missing/out", "No such file or directory"),
                             ("link", "is a symbolic link to nothing"),
                             ("/dev/full", "No space left on device")]:
            self.expect(run("-o", path, stdin=b"abc"), 2, b"", [f"kivconv: {path}", reason])
        self.assertEqual(sorted(os.listdir()), ["folder", "link"])
        self.write("read-only", b"precious")
        os.chmod("read-only", 0o444)
        if not os.access("read-only", os.W_OK):
            self.expect(run("-o", "read-only", stdin=b"abc"), 2, b"", ["Permission denied"])
            self.assertEqual(self.read("read-only"), b"precious")

    def test_devices_and_pipes_are_written_directly(self):
        self.expect(run("-o", "/dev/null", stdin=b"abc"), 0, b"", "")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))
        self.expect(run("-o", "-", stdin=b"abc"), 0, b"abc", "")
        self.expect(run("-o", "/dev/stdout", stdin=b"abc"), 0, b"abc", "")

    def test_signals_leave_no_half_file(self):
        for number in [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGPIPE]:
            self.write("out", b"precious")
            process = start("-t", "utf-16le", "-o", "out")
            feed(process, b"x" * 300000)
            self.assertEqual(len(os.listdir()), 2, "no temporary file to be left behind")
            process.send_signal(number)
            self.assertEqual(process.wait(60), -number)
            process.stdin.close()
            self.assertEqual(os.listdir(), ["out"])
            self.assertEqual(self.read("out"), b"precious")

    def test_an_ignored_signal_stays_ignored(self):
        process = start("-o", "out",
                        preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        feed(process, b"abc")
        process.send_signal(signal.SIGHUP)
        process.communicate(b"def", timeout=60)
        self.assertEqual((process.returncode, self.read("out")), (0, b"abcdef"))


class StandardOutput(ProgramTest):
    def test_full_device(self):
        for args in [["-t", "utf-16le"], ["--list"], ["--help"]]:
            with open("/dev/full", "wb") as full:
                process = start(*args, stdout=full, stderr=subprocess.PIPE)
                _, err = process.communicate(b"abc", timeout=60)
            self.assertEqual(process.returncode, 2)
            self.assertEqual(err.decode(), "kivconv: standard output: cannot write: "
                                           "No space left on device\n")

    def test_reader_that_goes_away(self):
        for restore_signals in [True, False]:
            process = start("-t", "utf-16le", stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            restore_signals=restore_signals)
            process.stdout.close()
            try:
                feed(process, b"x" * 300000)
            except BrokenPipeError:
                pass
            err = process.stderr.read().decode()
            status = process.wait(60)
            process.stderr.close()
            try:
                process.stdin.close()
            except BrokenPipeError:
                pass
            # Python itself ignores SIGPIPE, and what it starts then does too.
            if restore_signals:
                self.assertEqual((status, err), (-signal.SIGPIPE, ""))
            else:
                self.assertEqual(status, 2)
                self.assertIn("standard output: cannot write: Broken pipe", err)

    def test_a_file_is_not_fed_with_itself(self):
        self.write("file", b"abc")
        with open("file", "ab") as file:
            process = start("file", stdout=file, stderr=subprocess.PIPE)
            _, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 2)
        self.assertIn("file: is also the output", err.decode())
        self.assertEqual(self.read("file"), b"abc")


class Streams(ProgramTest):
    def test_a_large_stream_takes_little_memory(self):
        text = "plain text, naïve café, Ελλάδα, 人類社会, \U0001F600\U0001E900\n" * 15000
        block, count = text.encode(), 0
        process = start("-t", "utf-16le", stdout=subprocess.PIPE)
        written = hashlib.sha256()

        def drain():
            while data := process.stdout.read1(1 << 20):
                written.update(data)

        reader = threading.Thread(target=drain)
        reader.start()
        while count * len(block) < 200_000_000:
            process.stdin.write(block)
            count += 1
        feed(process, b"")
        with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
            peak = int(re.search(r"^VmHWM:\s+(\d+) kB", status.read(), re.M)[1])
        process.stdin.close()
        reader.join()
        process.stdout.close()
        self.assertEqual(process.wait(60), 0)

        expected, converted = hashlib.sha256(), text.encode("utf-16-le")
        for _ in range(count):
            expected.update(converted)
        self.assertEqual(written.digest(), expected.digest())
        if not os.environ.get("KIVCONV_SANITIZED"):
            self.assertLess(peak, 16 * 1024)

    @unittest.skipIf(os.environ.get("KIVCONV_SANITIZED"), "takes minutes under sanitizers")
    def test_more_than_4_gib(self):
        size = 2**32 + 12345
        with open("sparse", "wb") as file:
            file.seek(size)
            file.write(b"\xFF")
        self.expect(run("-f", "utf8", "-t", "us-ascii", "-o", "/dev/null", "sparse"), 1, b"",
                    [f"byte {size}: FF"])

    def test_progress(self):
        self.write("in", b"x" * 2_500_000)
        self.expect(run("in", "-o", "out"), 0, b"", "")
        result = run("--progress", "in", "-o", "out")
        self.expect(result, 0, b"")
        self.assertRegex(result.err, r"\Akivconv: 2\.5 MB of 2\.5 MB \(100%\), .* MB/s\n\Z")
        self.assertRegex(run("--progress", stdin=b"x" * 100000).err,
                         r"\Akivconv: 0\.1 MB, .* MB/s\n\Z")

    def test_progress_on_a_terminal_appears_by_itself(self):
        ours, theirs = os.openpty()
        self.addCleanup(os.close, ours)
        process = start("-o", "out", stderr=theirs)
        os.close(theirs)
        for _ in range(12):  # a second and more: then the line appears
            feed(process, b"x" * 1000)
            time.sleep(0.1)
        process.communicate(b"\xFF", timeout=60)
        shown = b""
        try:
            while True:
                shown += os.read(ours, 4096)
        except OSError:  # the end of what the terminal was sent
            shown = shown.decode()
        self.assertRegex(shown, r"\Akivconv: 0\.0 MB, [^\r\n]* MB/s\r\x1b\[K")
        # The message takes the place of the line.
        self.assertRegex(shown, r"\r\x1b\[Kkivconv: standard input: byte 12000: FF [^\r\n]*"
                                r"\r\n\Z")


if __name__ == "__main__":
    unittest.main()
