#!/usr/bin/env python3
"""Relays TCP connections on 127.0.0.1:PORT to the local X server's socket, as a remote
connection (DISPLAY=host:N, ssh -X) reaches it: no file descriptor can pass.

    tcp_x_proxy.py PORT DISPLAY_NUMBER
"""
import socket
import sys
import threading


def pump(source, target):
    try:
        while data := source.recv(65536):
            target.sendall(data)
    except OSError:
        pass
    finally:
        for s in (source, target):
            try:
                s.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass


def main():
    port, display = int(sys.argv[1]), sys.argv[2]
    listener = socket.create_server(("127.0.0.1", port))
    print("listening", flush=True)
    while True:
        client, _ = listener.accept()
        server = socket.socket(socket.AF_UNIX)
        server.connect(f"/tmp/.X11-unix/X{display}")
        for a, b in ((client, server), (server, client)):
            threading.Thread(target=pump, args=(a, b), daemon=True).start()


if __name__ == "__main__":
    main()
