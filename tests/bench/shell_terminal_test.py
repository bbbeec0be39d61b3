#!/usr/bin/env python3
"""ostrel-bench shell at a terminal: editing, completion, history, frames under a line, Ctrl+C and Ctrl+D."""
import os, pty, select, sys, tempfile, time, signal, subprocess

PROMPT = b"ostrel> "


class Terminal:
    def __init__(self, program, state, *options):
        self.main, worker = pty.openpty()
        environment = dict(os.environ, XDG_STATE_HOME=state, TERM="xterm", INPUTRC="/dev/null", LC_ALL="C.UTF-8")
        self.process = subprocess.Popen([program, "shell", *options], stdin=worker, stdout=worker, stderr=worker,
                                        env=environment, start_new_session=True,
                                        preexec_fn=lambda: __import__("fcntl").ioctl(0, __import__("termios").TIOCSCTTY, 0))
        os.close(worker)
        self.seen = b""

    def read(self, timeout):
        if not select.select([self.main], [], [], timeout)[0]:
            return False
        try:
            self.seen += os.read(self.main, 4096)
        except OSError:
            return False
        return True

    def expect(self, text, seconds=30):
        """Waits for a text and takes everything up to it."""
        end = time.monotonic() + seconds
        while text not in self.seen:
            left = end - time.monotonic()
            if left <= 0 or (not self.read(left) and self.process.poll() is not None):
                sys.exit(f"expected {text!r}, got {self.seen!r}")
        before, self.seen = self.seen.split(text, 1)
        return before

    def type(self, text):
        os.write(self.main, text)

    def end(self):
        self.expect(b"\n")
        return self.process.wait(30)


def main(program):
    with tempfile.TemporaryDirectory() as state:
        shell = Terminal(program, state, "--device", "5")
        shell.expect(PROMPT)
        shell.type(b"sta\t\n")  # one candidate: completed
        shell.expect(b"start")
        shell.expect(PROMPT)
        shell.type(b"nmt oper\t5\n")
        shell.expect(b"nmt operational 5")
        shell.expect(PROMPT)
        shell.type(b"dance\n")  # an error goes on
        shell.expect(b'"dance": no such command')
        shell.expect(PROMPT)
        # Frames come while a line is edited: the line is drawn anew behind them, whole.
        shell.type(b"trace on\n")
        shell.expect(PROMPT)
        shell.type(b"nmt stop 5\n")
        shell.expect(b"NMT: stop, node 5")
        shell.expect(PROMPT)
        shell.type(b"nmt reset 5\nhelp qui")  # the boot-up comes when the device has restarted
        shell.expect(b"boot-up")
        shell.expect(b"help qui")
        shell.type(b"\t\n")
        shell.expect(b"Leave; so does the end of the input")
        shell.expect(PROMPT)
        shell.type(b"half a line\x03")  # Ctrl+C drops it
        shell.expect(b"^C")
        shell.expect(PROMPT)
        shell.type(b"sleep 100\n")  # and ends what waits
        shell.expect(b"sleep 100")
        time.sleep(0.3)
        shell.type(b"\x03")
        shell.expect(b"interrupted")
        shell.expect(PROMPT)
        shell.type(b"\x04")  # Ctrl+D
        if shell.end() != 0:
            sys.exit("status is not 0")

        shell = Terminal(program, state)
        shell.expect(PROMPT)
        shell.type(b"\x1b[A\x1b[A\n")  # two lines up in the history of the first run
        shell.expect(b'help quit')
        shell.expect(b"Leave; so does the end of the input")
        shell.expect(PROMPT)
        os.kill(shell.process.pid, signal.SIGTERM)
        if shell.end() != 130:
            sys.exit("status is not 130")


main(sys.argv[1])
