"""What a soak finds: faults, and what processes hold on to."""
import collections, os, pathlib, threading

PATIENCE = 60  # seconds until what does not answer counts as hanging

Held = collections.namedtuple("Held", "memory files threads")

faults = []
_lock = threading.Lock()


def fault(text):
    with _lock:
        faults.append(text)
        if len(faults) <= 50:
            print(f"  fault: {text}", flush=True)


def require(condition, text):
    if not condition:
        fault(text)


def held(process):
    """Memory in KiB, open files and threads of a process."""
    folder = pathlib.Path(f"/proc/{process.pid}")
    status = dict(line.split(":", 1) for line in (folder / "status").read_text().splitlines())
    return Held(int(status["VmRSS"].split()[0]), len(os.listdir(folder / "fd")), int(status["Threads"]))
