"""Commands that are run, and what they used."""
import hashlib
import os
import resource
import signal
import subprocess
import sys


def run(command, folder, limit=None, environment=None):
    """Exit status and output; None as status for a command that took too long."""
    process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, errors="replace",
                               start_new_session=True, env=environment)
    try:
        output, _ = process.communicate(timeout=limit)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return None, ""


def seconds_of_children():
    """Those of the processor, which other programs on the machine do not lengthen."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def must(command, folder):
    status, output = run(command, folder)
    if status != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{output[-4000:]}")
    return output


def digest(folder):
    sums = hashlib.sha256()
    for path in sorted(p for p in folder.rglob("*") if p.is_file()):
        sums.update(path.relative_to(folder).as_posix().encode() + b"\0" + path.read_bytes())
    return sums.hexdigest()[:16]
