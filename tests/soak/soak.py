#!/usr/bin/env python3
"""soak.py PROGRAM [--minutes M] [--seed N]: hosts of both variants, for a long time, with things going wrong at random.

Two servers: one that stays, with simulated devices, and one that is killed now and then. Each variant has a host, a shell at a
terminal with a channel on either server, which transmits, scans, saves its configuration, restarts its measurement, and finds its
sequence files gone. Numbered frames go over the server that stays, whose other clients drop, flood and talk nonsense; a log is
replayed again and again.

At the end: nothing has hung or crashed, no numbered frame is lost or out of order, every replay has found the same nodes, every
configuration that was saved is whole, memory and open files are what they were, and the hosts still work.
"""
import argparse, json, os, pathlib, pty, random, re, select, shutil, signal, socket, struct, subprocess, sys, tempfile, threading, time

HERE = pathlib.Path(__file__).resolve().parent
EXAMPLES = HERE.parent.parent / "examples"
PATIENCE = 60  # seconds until what does not answer counts as hanging
GROWTH = 4 << 20  # bytes that memory may grow by after the warm-up: allocators keep what they had at the busiest moment
faults = []


def fault(text):
    if len(faults) < 50:
        faults.append(text)
        print(f"  fault: {text}", flush=True)


def memory(process):
    for line in pathlib.Path(f"/proc/{process.pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) << 10


def files(process):
    return len(os.listdir(f"/proc/{process.pid}/fd"))


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

    def kill(self):
        self.process.kill()
        self.process.wait()


class Client:
    """A raw connection by the socketcand protocol."""

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

    def messages(self):
        """Whole messages of what has come so far."""
        parts = self.text.split(b">")
        self.text = parts.pop()
        return [part.strip(b"< ").split() for part in parts]


class Numbered(threading.Thread):
    """Frames with numbers from one client of a server to another: none is lost, none overtakes."""

    IDENTIFIER = b"6F1"

    def __init__(self, port):
        super().__init__(daemon=True)
        self.sender, self.receiver = Client(port), Client(port)
        self.sender.join()
        self.receiver.join()
        self.sender.socket.settimeout(PATIENCE)
        self.stopping, self.sent, self.seen = False, 0, 0
        time.sleep(0.1)  # a server holds a client's first frames back for a moment

    def run(self):
        try:
            while not self.stopping:
                time.sleep(0.02)
                burst = b""
                for _ in range(10):
                    data = " ".join(f"{byte:02X}" for byte in struct.pack("<Q", self.sent))
                    burst += f"< send {self.IDENTIFIER.decode()} 8 {data} >".encode()
                    self.sent += 1
                self.sender.socket.sendall(burst)
                self.drop(self.sender)
                self.take(0)
            end = time.monotonic() + PATIENCE
            while self.seen < self.sent and time.monotonic() < end:
                self.take(0.1)
        except OSError as error:
            fault(f"numbered frames: {error}")

    def drop(self, client):
        while select.select([client.socket], [], [], 0)[0] and client.socket.recv(65536):
            pass

    def take(self, wait):
        while select.select([self.receiver.socket], [], [], wait)[0]:
            piece = self.receiver.socket.recv(65536)
            if not piece:
                raise ConnectionError("the receiver was cut off")
            self.receiver.text += piece
            for words in self.receiver.messages():
                if words[:2] == [b"frame", self.IDENTIFIER]:
                    number = struct.unpack("<Q", bytes.fromhex(b"".join(words[3:]).decode()))[0]
                    if number != self.seen:
                        fault(f"numbered frames: {number} came instead of {self.seen}")
                    self.seen = number + 1


class Host:
    """ostrel-bench shell at a terminal, where an error ends nothing."""

    def __init__(self, program, variant, folder, servers):
        self.variant, self.folder, self.asked = variant, folder, 0
        self.sequence, self.configuration = folder / "work.seq", folder / "work.json"
        shutil.copy(EXAMPLES / "who-is-there.seq", self.sequence)
        cans = [word for number, server in enumerate(servers, 1)
                for word in ("--can", f"{number}=socketcand:127.0.0.1:{server.port}/can1")]
        subprocess.run([program, "config", "init", str(self.configuration), "--variant", variant, "--sequence",
                        str(self.sequence), *cans], check=True, capture_output=True)
        self.main, worker = pty.openpty()
        environment = dict(os.environ, XDG_STATE_HOME=str(folder), TERM="dumb", EDITRC="/dev/null", LC_ALL="C.UTF-8")
        self.process = subprocess.Popen([program, "shell", "--config", str(self.configuration)], stdin=worker, stdout=worker,
                                        stderr=worker, env=environment, start_new_session=True)
        os.close(worker)
        self.text = b""
        self.ask("help quit")

    def ask(self, command):
        """Gives a command, waits until the next would be taken, and returns what was said."""
        self.asked += 1
        mark = f"mark{self.asked}"
        end = f'"{mark}": no such command'.encode()
        os.write(self.main, f"{command}\n{mark}\n".encode())
        limit = time.monotonic() + PATIENCE
        while end not in self.text:
            if not select.select([self.main], [], [], max(0, limit - time.monotonic()))[0]:
                raise TimeoutError(f"{self.variant}: no answer to {command!r}: ...{self.text[-500:]!r}")
            try:
                self.text += os.read(self.main, 65536)
            except OSError:
                raise ConnectionError(f"{self.variant}: ended at {command!r}: ...{self.text[-500:]!r}")
        said, self.text = self.text.split(end, 1)
        return said.decode(errors="replace")

    def rest(self):
        self.ask("stop")
        return files(self.process)


class Soak:
    def __init__(self, program, folder, chance):
        self.program, self.folder, self.chance = program, folder, chance
        self.steady = Server(program, "the server that stays", "--device", "5", "--device", "9")
        self.frail = Server(program, "the server that dies", "--device", "12")
        self.files_of_server = files(self.steady.process)
        self.hosts = []
        for variant in ("halvard", "tesmond"):
            (folder / variant).mkdir()
            self.hosts.append(Host(program, variant, folder / variant, (self.steady, self.frail)))
        self.nodes = None
        self.counts = {}

    # What a host is asked to do. A command may fail, as long as the host goes on.
    def transmit(self, host):
        host.ask("start")
        host.ask(self.chance.choice(["run", f"run {host.sequence}", "cyclic on", "cyclic off"]))

    def reset_device(self, host):
        host.ask("start")
        host.ask(f"nmt reset {self.chance.choice(['5', '9', '12', 'all'])}")
        host.ask("wait 5 preoperational 2")

    def restart(self, host):
        host.ask("stop")
        host.ask("start")

    def trace(self, host):
        host.ask("trace on")
        host.ask(f"sleep {self.chance.uniform(0.1, 0.5):.2f}")
        host.ask("trace off")
        host.ask("table")

    def vanish(self, host):
        kept = host.sequence.read_bytes()
        host.sequence.unlink()
        said = host.ask(f"load {host.sequence}")
        if "work.seq" not in said:
            fault(f"{host.variant}: nothing is said of a sequence that is gone")
        host.sequence.write_bytes(kept if self.chance.random() < 0.5 else kept[:self.chance.randrange(len(kept))])
        host.ask(f"load {host.sequence}")
        host.sequence.write_bytes(kept)
        host.ask(f"load {host.sequence}")

    def save(self, host):
        target = host.folder / f"saved{self.chance.randrange(3)}.json"
        if self.chance.random() < 0.3:
            target = host.folder / "gone" / "saved.json"  # there is no such folder
        host.ask(f"save {target}")
        if target.exists():
            checked = subprocess.run([self.program, "config", "show", str(target), "--json"], capture_output=True, text=True,
                                     timeout=PATIENCE)
            if checked.returncode != 0 or not json.loads(checked.stdout):
                fault(f"{host.variant}: a saved configuration is not whole: {checked.stderr}")

    # What befalls all of them.
    def lose_bus(self, _):
        self.frail.kill()
        time.sleep(self.chance.uniform(0, 1))
        self.frail.start()

    def client(self, _):
        client = Client(self.steady.port)
        kind = self.chance.randrange(4)
        if kind > 0:
            client.join()
        if kind == 1:
            client.socket.sendall(bytes(self.chance.randrange(256) for _ in range(2000)))
        elif kind == 2:
            client.socket.sendall(b"< send 7F0 8 " + b"< send 7E0 1 00 >" * 200)
        elif kind == 3:  # gone without a farewell
            client.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        client.socket.close()

    def replay(self, host):
        log = EXAMPLES / "two-networks.log"
        cans = [word for number in (1, 2) for word in ("--can", f"{number}=replay:{log},speed=max,iface=can{number}")]
        run = subprocess.run([self.program, "scan", "--variant", host.variant, *cans, "--json"], capture_output=True, text=True,
                             timeout=PATIENCE)
        nodes = json.loads(run.stdout).get("nodes") if run.returncode == 0 else None
        self.nodes = self.nodes or nodes
        if not nodes or nodes != self.nodes:
            fault(f"replay: status {run.returncode}, other nodes than at first: {run.stderr}")

    def run(self, seconds):
        begin = time.monotonic()
        numbered = Numbered(self.steady.port)
        numbered.start()
        deeds = [self.transmit, self.reset_device, self.restart, self.trace, self.vanish, self.save, self.lose_bus, self.client,
                 self.client, self.replay]
        processes = {"server": self.steady.process, **{host.variant: host.process for host in self.hosts}}
        before = resting = None
        while time.monotonic() - begin < seconds:
            if before is None and time.monotonic() - begin > min(seconds / 2, 120):
                resting = {host.variant: host.rest() for host in self.hosts}
                before = {name: memory(process) for name, process in processes.items()}
            deed = self.chance.choice(deeds)
            self.counts[deed.__name__] = self.counts.get(deed.__name__, 0) + 1
            deed(self.chance.choice(self.hosts))
            time.sleep(self.chance.uniform(0.05, 0.4))
            if self.steady.process.poll() is not None:
                return fault(f"the server has ended with status {self.steady.process.returncode}")
        numbered.stopping = True
        numbered.join(2 * PATIENCE)
        if numbered.seen != numbered.sent:
            fault(f"numbered frames: {numbered.sent} were sent, {numbered.seen} came")
        print("  " + ", ".join(f"{count} {name}" for name, count in sorted(self.counts.items())) + f", {numbered.sent} frames")
        self.look(processes, before, resting)
        for client in (numbered.sender, numbered.receiver):
            client.socket.close()
        self.finish()

    def look(self, processes, before, resting):
        for name, process in processes.items():
            now = memory(process)
            print(f"  memory of {name}: {before[name] >> 10} KiB, then {now >> 10} KiB")
            if now > before[name] + GROWTH:
                fault(f"{name}: memory grew by {(now - before[name]) >> 10} KiB")
        for host in self.hosts:
            left = host.rest()
            if left > resting[host.variant]:
                fault(f"{host.variant}: {left} files are open, {resting[host.variant]} before")

    def finish(self):
        for host in self.hosts:
            host.ask("start")
            host.ask("nmt reset 5")
            if "preoperational" not in host.ask("wait 5 preoperational 10\ntable"):
                fault(f"{host.variant}: does not hear a device any more")
            os.write(host.main, b"quit\n")
        for host in self.hosts:
            try:
                # What it still says has to go somewhere.
                while select.select([host.main], [], [], PATIENCE)[0] and os.read(host.main, 65536):
                    pass
            except OSError:
                pass
            if (status := host.process.wait(PATIENCE)) not in (0, 1):
                fault(f"{host.variant}: status {status}")
        time.sleep(0.5)
        if (left := files(self.steady.process)) > self.files_of_server:
            fault(f"server: {left} files are open without a client, {self.files_of_server} at first")
        self.steady.process.send_signal(signal.SIGINT)
        if self.steady.process.wait(PATIENCE) != 0:
            fault(f"server: status {self.steady.process.returncode}")

    def clear_up(self):
        for process in [self.steady.process, self.frail.process, *(host.process for host in self.hosts)]:
            if process.poll() is None:
                process.kill()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", help="the ostrel-bench to run")
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32))
    options = parser.parse_args()
    print(f"soak of {options.minutes:g} minutes, --seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="ostrel-soak-") as folder:
        soak = Soak(os.path.realpath(options.program), pathlib.Path(folder), random.Random(options.seed))
        try:
            soak.run(options.minutes * 60)
        except (OSError, subprocess.SubprocessError) as error:
            fault(f"{type(error).__name__}: {error}")
        finally:
            soak.clear_up()
    print(f"{len(faults)} faults, --seed {options.seed}")
    return 1 if faults else 0


sys.exit(main())
