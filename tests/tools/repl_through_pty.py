#!/usr/bin/python3
"""Drives the interactive session through a pseudo-terminal, as a user at a keyboard does:
statements, a malformed one, operators, a quiet statement, help, and exit; the variables
survive the error."""
import os
import pty
import select
import sys
import time

ORVEX = sys.argv[1]


pending = b""


def read_until(fd, expected, seconds=20):
    """Consumes the output up to and including expected and returns it; what follows stays
    pending."""
    global pending
    deadline = time.monotonic() + seconds
    while expected.encode() not in pending:
        remaining = deadline - time.monotonic()
        if remaining <= 0 or not select.select([fd], [], [], remaining)[0]:
            sys.exit(f"timed out waiting for {expected!r}; the session printed:\n{pending.decode(errors='replace')}")
        try:
            chunk = os.read(fd, 4096)
        except OSError:
            chunk = b""
        if not chunk:
            sys.exit(f"the session ended before {expected!r}; it printed:\n{pending.decode(errors='replace')}")
        pending += chunk
    end = pending.index(expected.encode()) + len(expected)
    consumed, pending = pending[:end], pending[end:]
    return consumed.decode(errors="replace")


pid, fd = pty.fork()
if pid == 0:
    os.execv(ORVEX, [ORVEX])

read_until(fd, ">> ")
for line, expected in [
    ("x = plus(1, 2)", "x = 3"),
    ("y = plus(x, [1 2)", "^ missing closing bracket"),
    ("y = plus(x, 2", "^ missing closing parenthesis"),
    ("y = plus(x, 10)", "y = 13"),
    ("z = pluss(y)", "Did you mean 'plus'?"),
    ("help nchoosek", "nchoosek: binomial coefficient of two scalars"),
    ("w = -y^2 + 1;", ">> "),  # quiet: the next prompt follows the echoed line
    ("v = w(end) / 8", "v = -21"),
    ("help", "nchoosek"),
]:
    os.write(fd, (line + "\n").encode())
    shown = read_until(fd, expected)
    if expected == ">> ":
        if "-168" in shown:
            sys.exit(f"a statement ending in ';' printed its result:\n{shown}")
    else:
        read_until(fd, ">> ")
os.write(fd, b"exit\n")
_, status = os.waitpid(pid, 0)
sys.exit(0 if os.WIFEXITED(status) and os.WEXITSTATUS(status) == 0 else f"exit status {status}")
