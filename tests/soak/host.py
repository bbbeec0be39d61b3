"""A host of a soak, and what it is asked to do. A command may fail as long as the host goes on, says why, and loses nothing."""
import json, os, pty, re, select, shutil, signal, subprocess, time

from peers import NUMBERED, RUN_LENGTH, RUNS
from watch import PATIENCE, fault, require

# What two-networks.log has of its first network: node-ID and state at its end, and what uploads told of node 5.
IN_LOG = {("1", "Operational"), ("2", "Preoperational"), ("5", "Operational"), ("9", "unknown")}
SERIAL_IN_LOG = "12345"
# What is counted, and must have come about in a long soak.
DEEDS = ("sequences sent", "sequences broken off", "devices reset", "logs replayed and scanned", "traces of numbered frames",
         "files lost", "configurations saved")


class Host:
    """ostrel-bench shell at a terminal, where an error ends nothing: a channel on each server, and one that replays a log."""

    def __init__(self, program, variant, folder, servers, examples, chance):
        self.program, self.variant, self.folder, self.chance = program, variant, folder, chance
        self.asked, self.counts, self.whole, self.broken = 0, dict.fromkeys(DEEDS, 0), 0, 0
        self.sequence, self.configuration, self.log = (folder / name for name in ("work.seq", "work.json", "replayed.log"))
        self.sequence.write_text(self.items((examples / "sdo-transfers.seq").read_text()))
        shutil.copy(examples / "two-networks.log", self.log)
        cans = [word for number, server in enumerate(servers, 1)
                for word in ("--can", f"{number}=socketcand:127.0.0.1:{server.port}/can1")]
        subprocess.run([program, "config", "init", str(self.configuration), "--variant", variant, "--sequence",
                        str(self.sequence), *cans, "--can", f"3=replay:{self.log},speed=20,iface=can1"], check=True,
                       capture_output=True)
        self.configuration.write_text(self.configuration.read_text().replace('"5000"', '"500"'))  # the time-out of SDO
        self.main, worker = pty.openpty()
        environment = dict(os.environ, XDG_STATE_HOME=str(folder), TERM="dumb", EDITRC="/dev/null", LC_ALL="C.UTF-8")
        self.process = subprocess.Popen([program, "shell", "--config", str(self.configuration)], stdin=worker, stdout=worker,
                                        stderr=worker, env=environment, start_new_session=True)
        os.close(worker)
        self.text = b""
        self.ask("help quit")
        self.settings = self.show(self.configuration)

    def items(self, text):
        """The SDO transfers of the example, each variant with another node, between numbered PDOs; a cyclic list."""
        if self.variant == "tesmond":
            text = text.replace('NodeID="5"', 'NodeID="9"').replace("0x605", "0x609").replace("0x585", "0x589")
        transfers = [line for line in text.splitlines() if "<SDO" in line]
        pdos = [f'<PDO COBID="{RUNS[self.variant]:#x}" Data="uint:{n}" DLC="1" NodeID="5" AutoSize="0" Enabled="1"/>'
                for n in range(RUN_LENGTH)]
        mixed = [item for pair in zip(pdos, transfers) for item in pair] + pdos[len(transfers):]
        cyclic = '<PDO COBID="0x6E2" Data="uint:7" DLC="8" NodeID="5" AutoSize="0" SendCycle="5" SendDelay="0" Enabled="1"/>'
        self.length = len(mixed)
        return "\n".join(["<CANopenIG><Sequence>", *mixed, "</Sequence><CyclicMsgs>", cyclic, "</CyclicMsgs></CANopenIG>"])

    def show(self, configuration):
        """A configuration as the program reads it, without the places of windows."""
        run = subprocess.run([self.program, "config", "show", str(configuration), "--json"], capture_output=True, text=True,
                             timeout=PATIENCE)
        require(run.returncode == 0, f"{self.variant}: a saved configuration is not whole: {run.stderr}")
        shown = json.loads(run.stdout) if run.returncode == 0 else {}
        for block in shown.get("blocks", []):
            block["settings"].pop("WindowPos", None)
        return shown

    def tell(self, command):
        os.write(self.main, f"{command}\n".encode())

    def ask(self, command):
        """Gives a command, waits until the next would be taken, and returns what was said, without the lines that were typed."""
        self.asked += 1
        mark = f"mark{self.asked}"
        end = f'"{mark}": no such command'.encode()
        self.tell(f"{command}\n{mark}")
        limit = time.monotonic() + PATIENCE
        while end not in self.text:
            if not select.select([self.main], [], [], max(0, limit - time.monotonic()))[0]:
                raise TimeoutError(f"{self.variant}: no answer to {command!r}: ...{self.text[-500:]!r}")
            try:
                self.text += os.read(self.main, 65536)
            except OSError:
                raise ConnectionError(f"{self.variant}: ended at {command!r}: ...{self.text[-500:]!r}")
        said, self.text = self.text.split(end, 1)
        lines = (line.rstrip("\r") for line in said.decode(errors="replace").split("\n")[1:])
        return "\n".join(line for line in lines if not line.startswith("ostrel> ") and line not in (command, mark))

    def start(self):
        """Whether a measurement runs now: it cannot while a bus is away."""
        self.ask("start")
        return "no measurement" not in self.ask("wait 127 stopped 0.01")

    def run_sequence(self):
        if self.start():
            said = self.ask(self.chance.choice(["run", f"run {self.sequence}"]))
            require(f"{self.length} items sent" in said, f"{self.variant}: the sequence was not sent: {said}")
            self.whole += 1
            self.counts["sequences sent"] += 1

    def break_off(self):
        """Ctrl+C within a sequence, which goes on until it or the measurement ends."""
        if self.start():
            self.tell("run")
            time.sleep(self.chance.uniform(0, 0.3))
            self.process.send_signal(signal.SIGINT)
            self.ask(self.chance.choice(["stop", "start", "table", "sleep 0.2"]))
            self.ask("stop")
            self.broken += 1
            self.counts["sequences broken off"] += 1

    def send_cyclic(self):
        if self.start():
            self.ask("cyclic on")
            self.ask("run")
            self.whole += 1
            self.ask(f"sleep {self.chance.uniform(0.1, 1):.2f}")
            self.ask("cyclic off")
            self.ask("sleep 0.1")  # until its timers have expired once more

    def reset_device(self):
        if self.start():
            self.ask(f"nmt reset {self.chance.choice(['5', '9', '12', 'all'])}")
            self.ask("wait 5 boot-up 1")
            self.counts["devices reset"] += 1

    def restart(self):
        self.ask("stop")
        self.start()

    def scan(self):
        """A measurement replays the log from its beginning, and its scanner knows in the end what is in it."""
        self.ask("stop")
        if not self.start():
            return
        limit = time.monotonic() + 20
        while True:
            self.ask("sleep 0.5")
            table = self.ask("table")
            lines = re.findall(r"^(\d+) +(\S+) +3 .*$", table, re.MULTILINE)
            if set(lines) == IN_LOG and SERIAL_IN_LOG in table:
                self.counts["logs replayed and scanned"] += 1
                return
            if time.monotonic() > limit:
                return fault(f"{self.variant}: the scanner has not all of the log: {table}")

    def trace(self):
        """Every frame that is numbered comes, and in order."""
        if self.start():
            self.ask("trace on")
            said = self.ask(f"sleep {self.chance.uniform(0.1, 0.5):.2f}") + self.ask("trace off")
            numbers = [int.from_bytes(bytes.fromhex(found), "little")
                       for found in re.findall(rf"can1 +{NUMBERED:X} +\[8\] +((?:[0-9A-F]{{2}} ?){{8}})", said)]
            require(numbers == list(range(numbers[0], numbers[0] + len(numbers))) if numbers else True,
                    f"{self.variant}: numbered frames of the trace: {numbers}")
            if numbers:
                self.counts["traces of numbered frames"] += 1

    def lose_file(self):
        """The sequence or the log is gone, comes back cut short, and is whole again."""
        file, command = self.chance.choice([(self.sequence, f"load {self.sequence}"), (self.log, "start")])
        kept = file.read_bytes()
        self.ask("stop")
        file.unlink()
        said = self.ask(command)
        require("no such file" in said.lower() or "connection" in said or "no answer" in said,
                f"{self.variant}: {file.name} is gone, and what is said is: {said}")
        file.write_bytes(kept[:self.chance.randrange(len(kept))])
        self.ask(command)
        self.ask("stop")
        file.write_bytes(kept)
        said = self.ask(f"load {self.sequence}")
        require(said.strip() == "", f"{self.variant}: a sequence that is whole is not loaded: {said}")
        self.counts["files lost"] += 1

    def save(self):
        if self.chance.random() < 0.3:
            said = self.ask(f"save {self.folder / 'gone' / 'saved.json'}")  # there is no such folder
            return require("cannot be saved" in said, f"{self.variant}: nothing is said of a folder that is gone: {said}")
        target = self.folder / f"saved{self.chance.randrange(3)}.json"
        if self.chance.random() < 0.3:
            target.unlink(missing_ok=True)
        self.ask(f"save {target}")
        shown = self.show(target)
        require(shown == self.settings, f"{self.variant}: saved {shown}, not {self.settings}")
        self.counts["configurations saved"] += 1

    def anything(self):
        deeds = [self.run_sequence, self.break_off, self.send_cyclic, self.reset_device, self.restart, self.scan, self.trace,
                 self.lose_file, self.save]
        self.chance.choice(deeds)()

    def finish(self):
        """Still works, and ends by itself."""
        self.ask("stop")
        require(self.start(), f"{self.variant}: does not start any more")
        self.ask("nmt reset 5")
        table = self.ask("wait 5 boot-up 10") + self.ask("table")
        require(re.search(r"^5 +Boot up +1 ", table, re.MULTILINE), f"{self.variant}: does not hear a device: {table}")
        self.tell("quit")
        try:
            # What it still says has to go somewhere.
            while select.select([self.main], [], [], PATIENCE)[0] and os.read(self.main, 65536):
                pass
        except OSError:
            pass
        # 1: some command has failed.
        require(self.process.wait(PATIENCE) in (0, 1), f"{self.variant}: status {self.process.returncode}")
