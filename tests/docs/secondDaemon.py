# SPDX-License-Identifier: Apache-2.0
"""A recovery daemon and a request daemon, written from docs/wire-protocol.md alone: they hold one client's document and
answer what a conversion asks. Whatever clients say is kept in `heard`, a connection each."""
import re
import socketserver
import struct
import threading

ROOT = '<?xml version="1.0" encoding="UTF-8"?>\n<ZorData xmlns="urn:zorvane:zordata:1">%s</ZorData>\n'
LISTINGS = {
    9: '<ProxyServerList><Host Name="proxy"/></ProxyServerList>',
    10: '<VirtualMachineServerList><Server Name="vcenter" Type="1"/></VirtualMachineServerList>',
    7: '<VirtualCenterViewNode Type="0"><Name>vcenter</Name><Children>'
       '<VirtualCenterViewNode Type="1"><Name>North</Name><Children>'
       '<VirtualCenterViewNode Type="3"><Name>esx</Name></VirtualCenterViewNode>'
       '</Children></VirtualCenterViewNode></Children></VirtualCenterViewNode>',
    17: '<NetworkList><Network Name="net"/></NetworkList>',
    11: '<ResourcePoolList><ResourcePool Name="Pool" Path="/North/Pool" Type="1"/></ResourcePoolList>',
    19: '<VmFolderView><Folder><Name>vm</Name><Path>/North/vm</Path></Folder></VmFolderView>',
    22: '<HostMachinesProxyView><Datastore><Name>store</Name><Freespace>1099511627776</Freespace></Datastore>'
        '</HostMachinesProxyView>',
}


class Peer(socketserver.StreamRequestHandler):
    def setup(self):
        super().setup()
        self.heard = bytearray()
        self.server.heard.append(self.heard)

    def read(self, count):
        data = self.rfile.read(count)
        self.heard += data
        return data

    def line(self):
        data = self.rfile.readline()
        self.heard += data
        return data.decode().rstrip("\n")

    def send(self, kind, form, *values, behind=b""):
        body = struct.pack(">" + form, *values)
        self.wfile.write(struct.pack(">HH", kind, 4 + len(body)) + body + behind)


class Zord(Peer):
    def handle(self):
        if self.line() != "0 0":
            return
        while header := self.read(4):
            kind, length = struct.unpack(">HH", header)
            body = self.read(length - 4)
            if kind & ~128 == 10:
                self.send(11, "c6s4s", b"\1", b"6.5.0\0", b"KVN\0")
            elif kind & ~128 == 22:
                command, count = struct.unpack(">ii", body)
                return self.database(command, self.read(count).decode())
            elif kind & ~128 == 9:
                return self.method(*struct.unpack(">HHH", body[:6]), body[6:].decode().split("\0"))

    def database(self, command, document):
        rows = ""
        table = re.search(r"<TableClause>ZorDba\.ZOR_(\w+)", document)
        if command == 12:  # what is inserted gets the numbers that it has: this daemon serves one conversion
            rows = re.search(r"<ZorData.*?>(.*)</ZorData>", document, re.S)[1].replace('fromDb="0"', 'fromDb="1"')
            self.server.inserted += rows
        elif command == 10 and not re.search("<TreeId>0<", document):
            rows = self.server.rows
        elif command == 10:
            name = table[1]
            rows = "".join(re.findall(rf"<{name}>.*?</{name}>", self.server.rows + self.server.inserted, re.S))
        reply = (ROOT % rows).encode() if command in (10, 12) else b""
        self.send(23, "ci", b"\0", len(reply), behind=reply)

    def method(self, operation, resource, count, texts):
        output = b""
        if (operation, resource) == (9, 9):
            if "-Listseconds" in texts[0]:
                output = b"heading\n-------\na b c d e f Full h daily\n"
            else:
                output = b"1795384200 more\n" if "-likelydate" in texts[0] else b"/found\n"
        self.server.called.append((operation, resource, texts[:count]))
        self.send(24, "ii", 0, 0, behind=output)


class Kvnrd(Peer):
    def handle(self):
        self.line()
        self.wfile.write(b"0\n")
        if self.line() == "136":
            self.wfile.write(b"0\n1\n")
            words = [self.line() for _ in range(5)]
            self.wfile.write((LISTINGS[int(words[1])] + "\nEXIT STATUS 0\n").encode())


def serve(peer, rows=""):
    """Serves in the background, until the program ends; the port is in `server_address`."""
    server = socketserver.ThreadingTCPServer(("127.0.0.1", 0), peer)
    server.daemon_threads = True
    server.heard, server.called, server.rows, server.inserted = [], [], rows, ""
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server
