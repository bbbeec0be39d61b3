"""The servers of a soak, and their clients by the socketcand protocol that are no hosts."""
import re, select, socket, struct, subprocess, sys, threading, time

from watch import PATIENCE, fault

NUMBERED = 0x6F1  # frames from one client to another
RUNS = {"halvard": 0x6F2, "tesmond": 0x6F3}  # what the variants' sequences send: the numbers from 0 to RUN_LENGTH - 1
RUN_LENGTH = 20


class Server:
    """ostrel-bench serve; keeps its port over its deaths."""

    def __init__(self, program, name, *options):
        self.command = [program, "serve", *options]
        self.name, self.port = name, 0
        self.start()

    def start(self):
        self.process = subprocess.Popen([*self.command, "--listen", f"127.0.0.1:{self.port}"], stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True)
        first = self.process.stdout.readline()
        found = re.search(r"127\.0\.0\.1:(\d+)", first)
        if not found:
            sys.exit(f"{self.name}: does not say where it listens: {first!r}")
        self.port = int(found[1])
        threading.Thread(target=lambda stream: [None for _ in stream], args=(self.process.stdout,), daemon=True).start()

    def end(self, signal, expected):
        """Ends it by a signal; to have ended before that is a fault."""
        if self.process.poll() is None:
            self.process.send_signal(signal)
        if (status := self.process.wait(PATIENCE)) != expected:
            fault(f"{self.name}: status {status}, not {expected}")


class Client:
    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), PATIENCE)
        self.text = b""
        self.expect(b"< hi >")

    def expect(self, text):
        while text not in self.text:
            piece = self.socket.recv(65536)
            if not piece:
                raise ConnectionError(f"gone before {text!r}")
            self.text += piece
        self.text = self.text.split(text, 1)[1]

    def join(self):
        for command, answer in ((b"< open can1 >", b"< ok >"), (b"< rawmode >", b"< ok >")):
            self.socket.sendall(command)
            self.expect(answer)
        return self

    def send(self, identifier, data):
        self.socket.sendall(f"< send {identifier:X} {len(data)} {data.hex(' ')} >".encode())

    def frames(self, seconds):
        """Identifier and data of what arrives in this time, and of what had arrived."""
        end = time.monotonic() + seconds
        while select.select([self.socket], [], [], max(0, end - time.monotonic()))[0]:
            piece = self.socket.recv(65536)
            if not piece:
                raise ConnectionError("a client was cut off")
            *whole, self.text = (self.text + piece).split(b">")
            for words in (message.strip(b"< ").split() for message in whole):
                if words[0] == b"frame":
                    yield int(words[1], 16), bytes.fromhex(b"".join(words[3:]).decode())
            if time.monotonic() >= end:
                break


class Accounts(threading.Thread):
    """Numbers frames from one client of a server to another: none is lost, none overtakes. Counts what the hosts' sequences send:
    how often one came whole, and how often it broke off, and frames of everybody."""

    def __init__(self, port):
        super().__init__(daemon=True)
        self.sender, self.receiver = Client(port).join(), Client(port).join()
        self.stopping, self.sent, self.seen, self.frames = False, 0, 0, 0
        self.next = dict.fromkeys(RUNS.values(), 0)
        self.whole, self.broken = dict.fromkeys(RUNS.values(), 0), dict.fromkeys(RUNS.values(), 0)
        time.sleep(0.1)  # a server holds a client's first frames back for a moment

    def run(self):
        try:
            while not self.stopping:
                for _ in range(10):
                    self.sender.send(NUMBERED, struct.pack("<Q", self.sent))
                    self.sent += 1
                for _ in self.sender.frames(0):
                    pass
                self.take(0.02)
            end = time.monotonic() + PATIENCE
            while self.seen < self.sent and time.monotonic() < end:
                self.take(0.1)
        except OSError as error:
            fault(f"numbered frames: {error}")

    def take(self, seconds):
        for identifier, data in self.receiver.frames(seconds):
            self.frames += 1
            if identifier == NUMBERED:
                number = struct.unpack("<Q", data)[0]
                if number != self.seen:
                    fault(f"numbered frames: {number} came instead of {self.seen}")
                self.seen = number + 1
            elif identifier in self.next:
                self.count(identifier, data[0])

    def count(self, identifier, number):
        if number not in (0, self.next[identifier]):
            fault(f"sequence of {identifier:X}h: {number} came instead of {self.next[identifier]}")
        self.broken[identifier] += number != self.next[identifier]
        self.whole[identifier] += number == RUN_LENGTH - 1
        self.next[identifier] = (number + 1) % RUN_LENGTH
