#!/usr/bin/env python3
"""Hosts of both variants, for a long time, with things going wrong at random: generator, scanner, serve, replay, saving.

Two servers: one that stays, with simulated devices, and one that is killed or stopped for a while. Each variant has a host, a shell
at a terminal with a channel on either server and one that replays a log. It transmits and breaks off, scans, traces, saves its
configuration, restarts its measurement, and finds its files gone. Meanwhile devices are reset, clients of the servers drop,
fall asleep, flood and talk nonsense, and logs are replayed as fast as can be.

Nothing may hang or crash. No numbered frame is lost or out of order, at a client or in a host's trace; each sequence that a host
has sent reaches the bus whole; every scan of a log finds its nodes; every configuration that was saved is what it was. Memory,
open files and threads are looked at between rounds, when all rests."""
import argparse, json, os, pathlib, random, shutil, signal, socket, struct, subprocess, sys, tempfile, threading, time

from host import Host
from peers import RUNS, Accounts, Client, Server
from watch import PATIENCE, fault, faults, held, require

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples"
LONG = 300  # seconds of a soak in which everything must have come about
GROWTH = 1024  # KiB that memory may grow by after the first round: allocators keep what they had at the busiest moment


class Soak:
    def __init__(self, program, folder, seed):
        self.program, self.chance = program, random.Random(seed)
        self.counts, self.nodes, self.asleep = {}, None, []
        self.steady = Server(program, "the server that stays", "--device", "5", "--device", "9")
        self.frail = Server(program, "the server that dies", "--device", "12")
        self.at_first = held(self.steady.process)
        self.hosts = []
        for variant in RUNS:
            (folder / variant).mkdir()
            self.hosts.append(Host(program, variant, folder / variant, (self.steady, self.frail), EXAMPLES,
                                   random.Random(f"{seed} {variant}")))
        self.accounts = Accounts(self.steady.port)
        self.log = folder / "two-networks.log"
        shutil.copy(EXAMPLES / "two-networks.log", self.log)

    # What befalls all of them.
    def kill_bus(self):
        self.frail.end(signal.SIGKILL, -signal.SIGKILL)
        time.sleep(self.chance.uniform(0, 1))
        self.frail.start()

    def freeze_bus(self):
        self.frail.process.send_signal(signal.SIGSTOP)
        time.sleep(self.chance.uniform(0, 2))
        self.frail.process.send_signal(signal.SIGCONT)

    def reset_devices(self):
        client = Client(self.steady.port).join()
        client.send(0, bytes([self.chance.choice([0x81, 0x82]), self.chance.choice([0, 5, 9])]))
        time.sleep(0.1)
        client.socket.close()

    def drop_client(self):
        client = Client(self.chance.choice([self.steady.port, self.frail.port]))
        kind = self.chance.randrange(5)
        if kind > 0:
            client.join()
        if kind == 1:
            client.socket.sendall(bytes(self.chance.randrange(256) for _ in range(2000)))
        elif kind == 2:
            client.socket.sendall(b"< send 7F0 8 " + b"< send 7E0 1 00 >" * 200)
        elif kind == 3:  # gone without a farewell
            client.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        elif kind == 4 and len(self.asleep) < 5:  # fetches nothing of what it is sent
            return self.asleep.append(client)
        client.socket.close()

    def flood(self):
        client = Client(self.steady.port).join()
        for _ in range(2000):
            client.send(0x7E1, b"\0" * 8)
        client.socket.close()

    def replay(self):
        cans = [word for number in (1, 2) for word in ("--can", f"{number}=replay:{self.log},speed=max,iface=can{number}")]
        run = subprocess.run([self.program, "scan", "--variant", self.chance.choice(list(RUNS)), *cans, "--json"],
                             capture_output=True, text=True, timeout=PATIENCE)
        nodes = json.loads(run.stdout).get("nodes") if run.returncode == 0 else None
        self.nodes = self.nodes or nodes
        require(nodes and nodes == self.nodes, f"replay: status {run.returncode}, other nodes than at first: {run.stderr}")

    def anything(self):
        deed = self.chance.choice([self.kill_bus, self.freeze_bus, self.reset_devices, self.drop_client, self.flood, self.replay])
        deed()
        self.counts[deed.__name__] = self.counts.get(deed.__name__, 0) + 1
        time.sleep(self.chance.uniform(0, 0.5))
        if (status := self.steady.process.poll()) is not None:
            raise ConnectionError(f"the server has ended with status {status}")

    def round(self, end):
        """All at once until then; afterwards what each process holds at rest."""
        def act(actor):
            try:
                while time.monotonic() < end and not failed:
                    actor.anything()
            except (OSError, subprocess.SubprocessError, ValueError) as error:
                failed.append(f"{type(error).__name__}: {error}")
        failed = []
        actors = [threading.Thread(target=act, args=(actor,), daemon=True) for actor in (self, *self.hosts)]
        for actor in actors:
            actor.start()
        for actor in actors:
            actor.join(max(0, end - time.monotonic()) + 3 * PATIENCE)
            if actor.is_alive():
                failed.append("somebody has not come to an end")
        if failed:
            raise ConnectionError("; ".join(failed))
        for host in self.hosts:
            host.ask("stop")
        while self.asleep:
            self.asleep.pop().socket.close()
        time.sleep(1)
        return {"server": held(self.steady.process), **{host.variant: held(host.process) for host in self.hosts}}

    def run(self, seconds):
        begin = time.monotonic()
        rounds = max(2, min(10, round(seconds / 180)))
        self.accounts.start()
        first = None
        for number in range(1, rounds + 1):
            last = self.round(begin + seconds * number / rounds)
            first = first or last
            print(f"  {time.monotonic() - begin:5.0f} s: " + "; ".join(
                f"{name} {now.memory} KiB, {now.files} files, {now.threads} threads" for name, now in last.items()), flush=True)
        for name, then, now in ((name, first[name], last[name]) for name in first):
            require(now.memory <= then.memory + GROWTH, f"{name}: memory grew from {then.memory} to {now.memory} KiB")
            require(now.files <= then.files, f"{name}: {now.files} files are open, {then.files} after the first round")
            require(now.threads <= then.threads, f"{name}: {now.threads} threads, {then.threads} after the first round")
        self.finish(seconds >= LONG)

    def finish(self, long):
        self.accounts.stopping = True
        self.accounts.join(2 * PATIENCE)
        seen, sent = self.accounts.seen, self.accounts.sent
        require(seen == sent, f"numbered frames: {sent} were sent, {seen} came")
        print(f"  {sent} numbered frames of {self.accounts.frames}, "
              + ", ".join(f"{count} {name}" for name, count in sorted(self.counts.items())))
        for host in self.hosts:
            whole, broken = self.accounts.whole[RUNS[host.variant]], self.accounts.broken[RUNS[host.variant]]
            print(f"  {host.variant}: " + ", ".join(f"{count} {name}" for name, count in sorted(host.counts.items())))
            require(all(host.counts.values()) or not long, f"{host.variant}: some of it has never come about")
            require(host.whole <= whole <= host.whole + host.broken and broken <= host.broken,
                    f"{host.variant}: {host.whole} sequences sent and {host.broken} broken off, {whole} came whole, {broken} in part")
            host.finish()
        for client in (self.accounts.sender, self.accounts.receiver):
            client.socket.close()
        time.sleep(0.5)
        left = held(self.steady.process).files
        require(left <= self.at_first.files, f"server: {left} files are open without a client, {self.at_first.files} at first")
        for server in (self.steady, self.frail):
            server.end(signal.SIGINT, 0)

    def clear_up(self):
        for process in [self.steady.process, self.frail.process, *(host.process for host in self.hosts)]:
            if process.poll() is None:
                process.kill()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", help="the ostrel-bench to run")
    parser.add_argument("--minutes", type=float, default=30, help="how long, 30 if not given; less than 0.5 tells little")
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32),
                        help="what happens, as another soak has printed it; when exactly, it does not say")
    options = parser.parse_args()
    print(f"soak of {options.minutes:g} minutes, --seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="ostrel-soak-") as folder:
        soak = Soak(os.path.realpath(options.program), pathlib.Path(folder), options.seed)
        try:
            soak.run(options.minutes * 60)
        except (OSError, subprocess.SubprocessError) as error:
            fault(f"{type(error).__name__}: {error}")
        finally:
            soak.clear_up()
    print(f"{len(faults)} faults, --seed {options.seed}")
    return 1 if faults else 0


sys.exit(main())
