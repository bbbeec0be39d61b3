#!/usr/bin/env python3
"""ostrel-bench shell at a terminal: editing, completion, history, frames under a line, Ctrl+C and Ctrl+D."""
import os, pty, re, select, sys, tempfile, time, signal, subprocess

PROMPT = "ostrel> "


class Screen:
    """What a terminal shows of the bytes that a program writes, as lines."""

    def __init__(self):
        self.lines, self.row, self.column, self.bytes = [""], 0, 0, b""

    def write(self, data):
        self.bytes += data
        while match := re.match(rb"\x1b\[([0-9;?]*)([@A-Za-z])|[\x20-\x7e\x80-\xff]+|[\r\n\b\a]", self.bytes):
            if len(match[0]) == len(self.bytes) and match[0][-1] >= 0x80:
                break  # perhaps not the whole character
            self.bytes = self.bytes[match.end():]
            if match[2]:
                self.move(match[2].decode(), int(match[1].split(b";")[0] or 0) if match[1][:1] != b"?" else 0)
            elif match[0] == b"\n":
                self.row += 1
                self.lines += [""] * (self.row + 1 - len(self.lines))
            elif match[0] in (b"\r", b"\b"):
                self.column = 0 if match[0] == b"\r" else self.column - 1
            elif match[0] != b"\a":
                text = match[0].decode()
                line = self.lines[self.row].ljust(self.column)
                self.lines[self.row] = line[:self.column] + text + line[self.column + len(text):]
                self.column += len(text)

    def move(self, what, count):
        line = self.lines[self.row]
        if what == "G":
            self.column = count - 1
        elif what in "CD":
            self.column += max(1, count) * (1 if what == "C" else -1)
        elif what == "A":
            self.row -= max(1, count)
        elif what in "KJ":
            self.lines[self.row] = line[:self.column]
            if what == "J":
                del self.lines[self.row + 1:]
        elif what == "P":
            self.lines[self.row] = line[:self.column] + line[self.column + max(1, count):]
        elif what == "@":
            self.lines[self.row] = line[:self.column] + " " * max(1, count) + line[self.column:]


class Terminal:
    def __init__(self, program, state, *options):
        self.main, worker = pty.openpty()
        environment = dict(os.environ, XDG_STATE_HOME=state, TERM="xterm", EDITRC="/dev/null", LC_ALL="C.UTF-8")
        self.process = subprocess.Popen([program, "shell", *options], stdin=worker, stdout=worker, stderr=worker,
                                        env=environment, start_new_session=True,
                                        preexec_fn=lambda: __import__("fcntl").ioctl(0, __import__("termios").TIOCSCTTY, 0))
        os.close(worker)
        self.screen = Screen()
        self.row, self.column = 0, 0  # where what was expected ended

    def read(self, timeout):
        if not select.select([self.main], [], [], timeout)[0]:
            return False
        try:
            self.screen.write(os.read(self.main, 4096))
        except OSError:
            return False
        return True

    def found(self, text):
        for row in range(self.row, len(self.screen.lines)):
            column = self.screen.lines[row].find(text, self.column if row == self.row else 0)
            if column >= 0:
                self.row, self.column = row, column + len(text)
                return True
        return False

    def expect(self, text, seconds=30):
        """Waits until a text stands on the screen behind what was expected last."""
        end = time.monotonic() + seconds
        while not self.found(text):
            left = end - time.monotonic()
            if left <= 0 or (not self.read(left) and self.process.poll() is not None):
                shown = "\n".join(self.screen.lines)
                sys.exit(f"expected {text!r} behind {self.row + 1}:{self.column}, got\n{shown}\n{self.screen.bytes!r}")

    def type(self, text):
        os.write(self.main, text)

    def end(self):
        while self.read(30):
            pass
        return self.process.wait(30)


def main(program):
    with tempfile.TemporaryDirectory() as state:
        shell = Terminal(program, state, "--device", "5")
        shell.expect(PROMPT)
        flags = re.search(r"flags:\s*(\d+)", open(f"/proc/{shell.process.pid}/fdinfo/1").read())[1]
        if int(flags, 8) & os.O_NONBLOCK:  # of the terminal, which is also that of other programs
            sys.exit("writing to a slow terminal would fail")
        shell.type(b"sta\t\n")  # one candidate: completed
        shell.expect("start")
        shell.expect(PROMPT)
        shell.type(b"nmt oper\t5\n")
        shell.expect("nmt operational 5")
        shell.expect(PROMPT)
        shell.type(b"dance\n")  # an error goes on
        shell.expect('"dance": no such command')
        shell.expect(PROMPT)
        shell.type(b"nmt \t")  # several: shown, and the line again
        shell.expect("preoperational")
        shell.expect(PROMPT + "nmt")
        shell.type(b"sto\t5\n")
        shell.expect(" stop 5")
        shell.expect(PROMPT)
        shell.type(f"load {state}/with b\x7f\"\x01\x05\x15".encode())  # taken back, moved in, cleared
        open(os.path.join(state, "with blank \u00e4.seq"), "w").write("<CANopenIG/>")
        shell.type(f"load {state}/wi\t\n".encode())  # a name with blanks is quoted
        shell.expect(f'"{state}/with blank \u00e4.seq"')
        shell.expect(PROMPT)
        # Frames come while a line is edited: the line is drawn anew behind them, whole.
        shell.type(b"trace on\n")
        shell.expect(PROMPT)
        shell.type(b"nmt stop 5\n")
        shell.expect("NMT: stop, node 5")
        shell.expect(PROMPT)
        shell.type(b"nmt reset 5\nhelp qui")  # the boot-up comes when the device has restarted
        shell.expect("boot-up")
        shell.expect("help qui")
        shell.type(b"\t\n")
        shell.expect("Leave; so does the end of the input")
        shell.expect(PROMPT)
        shell.type(b"half a line\x03")  # Ctrl+C drops it
        shell.expect("^C")
        shell.expect(PROMPT)
        shell.type(b"sleep 100\n")  # and ends what waits
        shell.expect("sleep 100")
        time.sleep(0.3)
        shell.type(b"\x03")
        shell.expect("interrupted")
        shell.expect(PROMPT)
        shell.type(b"\x04")  # Ctrl+D
        if shell.end() != 0:
            sys.exit("status is not 0")

        shell = Terminal(program, state)
        shell.expect(PROMPT)
        shell.type(b"\x1b[A\x1b[A\n")  # two lines up in the history of the first run
        shell.expect('help quit')
        shell.expect("Leave; so does the end of the input")
        shell.expect(PROMPT)
        os.kill(shell.process.pid, signal.SIGTERM)
        if shell.end() != 130:
            sys.exit("status is not 130")


main(sys.argv[1])
