"""What the operating system knows of a process."""
import os
import pathlib


def highest_memory(process):
    """The most that the process has ever had in memory, bytes; 0 once it has ended."""
    try:
        for line in pathlib.Path(f"/proc/{process}/status").read_text().splitlines():
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) * 1024
    except OSError:
        pass
    return 0


def processor_seconds_of(process):
    """Of all its threads, so far."""
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
