"""FTP servers of this machine: a real one, and one that accepts and then says nothing."""

import os
import socket
import subprocess
from pathlib import Path

from waiting import wait_for

PASSWORD = "typing@pool"

# An address of this run alone, since the port is always 21 and other runs have servers too.
ADDRESS = "127.{}.{}.{}".format(1 + (os.getpid() >> 16 & 63), os.getpid() >> 8 & 255, 1 + os.getpid() % 254)


def add_recipient(data, folder="pool/in", password=PASSWORD, index=0):
    server = {"host": ADDRESS, "user": "anonymous", "login": password, "ftpfolder": folder}
    data.add_recipient("Typist", index=index, method=2, **server)


class FtpServer:
    """vsftpd on a folder of its own; whoever gives the password may read, write and delete."""

    def __init__(self, folder):
        self.root = Path(folder) / "root"
        empty, passwords, config = (Path(folder) / name for name in ("empty", "passwords", "vsftpd.conf"))
        self.root.mkdir(parents=True)
        empty.mkdir()
        passwords.write_text(PASSWORD + "\n")
        values = {
            "listen": "YES", "listen_address": ADDRESS, "background": "NO", "run_as_launching_user": "YES",
            "anonymous_enable": "YES", "anon_root": self.root, "secure_email_list_enable": "YES",
            "email_password_file": passwords, "delay_failed_login": 0, "write_enable": "YES",
            "anon_upload_enable": "YES", "anon_other_write_enable": "YES", "anon_world_readable_only": "NO",
            "secure_chroot_dir": empty, "seccomp_sandbox": "NO", "isolate": "NO", "isolate_network": "NO",
        }
        config.write_text("".join(f"{key}={value}\n" for key, value in values.items()))
        self.process = subprocess.Popen(["/usr/sbin/vsftpd", str(config)], stdin=subprocess.DEVNULL)
        wait_for(self.answers, "the FTP server")

    def answers(self):
        assert self.process.poll() is None, "the FTP server has ended"
        with socket.socket() as client:
            client.settimeout(5)
            return client.connect_ex((ADDRESS, 21)) == 0 and client.recv(3) == b"220"

    def close(self):
        self.process.terminate()
        self.process.wait(10)


class SilentServer:
    """Takes connections, and says nothing on those that it does not refuse."""

    def __init__(self):
        self.listener = socket.create_server((ADDRESS, 21))
        self.listener.settimeout(20)
        self.taken = []

    def refuse(self):
        with self.listener.accept()[0] as taken:
            taken.sendall(b"421 Too many users.\r\n")

    def take(self):
        self.taken.append(self.listener.accept()[0])
