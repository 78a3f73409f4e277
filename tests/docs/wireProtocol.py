#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds docs/wire-protocol.md against the programs: its example in bytes is what zorlab answers and zorb2v sends, and a
daemon that was written from it serves a whole conversion."""
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True  # nothing is left among the sources
import secondDaemon

source, programs = map(Path, sys.argv[1:])
page = (source / "docs/wire-protocol.md").read_text()
CLIENT = "ledger01.corp.example"


def example():
    """The two connections of the page, as (who, bytes) pieces."""
    documents = [text.encode() for text in re.findall(r"^```xml\n(.*?)^```", page, re.M | re.S)]
    connections = []
    for block in re.findall(r"^```text\n(.*?)^```", page, re.M | re.S):
        pieces = []
        for who, hexes in re.findall(r"^(client|daemon)  (document|(?:[0-9a-f]{2} ?)+)", block, re.M):
            pieces.append((who, documents.pop(0) if hexes == "document" else bytes.fromhex(hexes)))
        connections.append(pieces)
    query, method = connections
    return query, query[:3] + method


def check(what, wanted, came):
    if wanted != came:
        sys.exit(f"{what}\nthe page: {wanted}\nit came: {came}")


def say(port, pieces):
    """Says the client's pieces, and holds what is answered to them."""
    with socket.create_connection(("127.0.0.1", port), 10) as peer:
        stream = peer.makefile("rwb")
        for who, data in pieces:
            if who == "client":
                stream.write(data)
                stream.flush()
            else:
                check("zorlab answers otherwise", data, stream.read(len(data)))
        check("zorlab says more", b"", stream.read())


def heldAgainstTheLab(connections):
    Path("samples").mkdir()
    shutil.copy(source / "share/samples/ledger01.xml", "samples")
    subprocess.run([programs / "zorlab", "init", "--samples", "samples", "lab"], check=True, stdout=subprocess.DEVNULL)
    port = int(re.search(r"^zord = (\d+)", Path("lab/kvn.toml").read_text(), re.M)[1])
    with subprocess.Popen([programs / "zorlab", "serve", "lab"], stdout=subprocess.PIPE, text=True) as lab:
        try:
            check("zorlab does not come up", "ready\n", lab.stdout.readline())
            for pieces in connections:
                say(port, pieces)
        finally:
            lab.terminate()


def converted(connections):
    sample = (source / "share/samples/ledger01.xml").read_text()
    rows = re.search(r"<ZorData[^>]*>(.*)</ZorData>", sample, re.S)[1].replace('fromDb="0"', 'fromDb="1"')
    zord, kvnrd = secondDaemon.serve(secondDaemon.Zord, rows), secondDaemon.serve(secondDaemon.Kvnrd)
    Path("kvn.toml").write_text('[master]\nservers = ["localhost"]\n[services]\n'
                                f"zord = {zord.server_address[1]}\nkvnrd = {kvnrd.server_address[1]}\n")
    Path("target.conf").write_text("name=new-vm\ntoolsIsoPath=/tools.iso\nharddisk=0:store\n")
    run = subprocess.run([programs / "zorb2v", "-C", CLIENT, "-vmserver", "vcenter", "-vmproxy", "proxy", "-veconfig",
                          "target.conf"], env={**os.environ, "KVN_CONF": "kvn.toml"}, timeout=60)
    check("the conversion with the second daemon", 0, run.returncode)
    check("the job", (25, 20, ["1", "1"]), zord.called[-1])
    for pieces in connections:
        said = b"".join(data for who, data in pieces if who == "client")
        check("zorb2v never says", said, next((bytes(heard) for heard in zord.heard if heard == said), None))


with tempfile.TemporaryDirectory(prefix="wire-") as scratch:
    os.chdir(scratch)
    pair = example()
    heldAgainstTheLab(pair)
    converted(pair)
