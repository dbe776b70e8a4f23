"""The copy of the sources that faults are put into, its build, and the processes that run there."""

import atexit
import fcntl
import hashlib
import json
import os
import resource
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OPTIONS = ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -D_GLIBCXX_ASSERTIONS",
           "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DTAKSAVAIHE_TESTS=ON"]
BUILD_SECONDS = 1200      # for building what one fault changes, linking every program
MEMORY = 6 << 30          # of one test program; a fault may make it grow without end
FILE_SIZE = 4 << 30


class Process:
    """Runs a command in a process group of its own, which ends with it whatever happens."""
    running = set()
    lock = threading.Lock()

    @classmethod
    def run(cls, command, seconds, limited=False, **options):
        """Exit code (None: out of time) and output."""
        def limits():
            resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        with tempfile.TemporaryFile() as output:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output,
                                       stderr=subprocess.STDOUT, start_new_session=True,
                                       preexec_fn=limits if limited else None, **options)
            with cls.lock:
                cls.running.add(process.pid)
            try:
                code = process.wait(seconds)
            except subprocess.TimeoutExpired:
                code = None
            finally:
                cls.end(process.pid)
                process.wait()
                with cls.lock:
                    cls.running.discard(process.pid)
            output.seek(max(0, output.seek(0, os.SEEK_END) - 200_000))
            return code, output.read().decode("utf-8", "replace")

    @classmethod
    def end(cls, pid):
        try:
            os.killpg(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    @classmethod
    def end_all(cls):
        with cls.lock:
            for pid in cls.running:
                cls.end(pid)


class Tree:
    """The copy of the sources that faults are put into, and its build."""

    def __init__(self, folder, jobs):
        self.jobs = jobs
        self.source = os.path.join(folder, "source")
        self.build = os.path.join(folder, "build")
        self.scratch = os.path.join(folder, "scratch")
        self.changed = {}  # sources that hold a fault, with their own text
        self.objects = {}  # what the unchanged sources compile to
        os.makedirs(self.source, exist_ok=True)
        self.lock = open(os.path.join(folder, "lock"), "w")
        try:
            fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise SystemExit(f"{folder} is in use by another run")
        atexit.register(self.restore)

    def synchronize(self):
        """Copies what git knows; keeps the times of what is the same, so that little is built."""
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                cwd=ROOT, check=True, capture_output=True).stdout.decode().split("\0")
        names = {name for name in listed if os.path.isfile(os.path.join(ROOT, name))}
        digest = hashlib.sha256()
        for name in sorted(names):
            with open(os.path.join(ROOT, name), "rb") as file:
                content = file.read()
            if not name.startswith(("docs/", "scripts/")):
                digest.update(f"{name}\0{len(content)}\0".encode() + content)
            target = os.path.join(self.source, name)
            if os.path.isfile(target):
                with open(target, "rb") as file:
                    if file.read() == content:
                        continue
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copy(os.path.join(ROOT, name), target)
        for folder, _, files in os.walk(self.source):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.source) not in names:
                    os.remove(path)
        self.digest = digest.hexdigest()

    def configure(self):
        linker = next((name for name in ("mold", "lld") if shutil.which("ld." + name)), None)
        options = OPTIONS + [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld={linker}"
                             for kind in ("EXE", "SHARED", "MODULE") if linker]
        code, output = Process.run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, *options],
                                   600)
        if code != 0:
            raise SystemExit(output)

    def make(self, *targets, seconds=BUILD_SECONDS):
        return Process.run(["ninja", "-C", self.build, "-j", str(self.jobs), *targets], seconds)

    def read_commands(self):
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            self.commands = {}
            for entry in json.load(file):
                name = os.path.relpath(entry["file"], self.source)
                self.commands.setdefault(name, []).append(entry)

    def path(self, name):
        return os.path.join(self.source, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def put(self, name, text):
        self.changed.setdefault(name, self.read(name))
        self.write(name, text)

    def restore(self):
        # written anew, also for its time: what was built of the fault is older then
        for name, text in self.changed.items():
            self.write(name, text)
        self.changed = {}

    def compiled(self, name):
        """The object codes of a source; None when it does not compile."""
        codes = []
        for entry in self.commands[name]:
            words = shlex.split(entry["command"])
            target = words.index("-o") + 1
            words[target] = os.path.join(self.scratch, "object.o")
            if "-MF" in words:
                words[words.index("-MF") + 1] = os.path.join(self.scratch, "object.d")
            code, _ = Process.run(words, 300, cwd=entry["directory"])
            if code != 0:
                return None
            with open(words[target], "rb") as file:
                codes.append(hashlib.sha256(file.read()).hexdigest())
        return codes

    def makes_a_difference(self, fault, text):
        if fault.file not in self.objects:
            self.objects[fault.file] = self.compiled(fault.file)
        self.put(fault.file, text)
        try:
            codes = self.compiled(fault.file)
        finally:
            self.restore()
        return codes is not None and codes != self.objects[fault.file]
