"""A real SMTP server on loopback for the mail tests.

It listens on 127.0.0.1 at a port the system picks, prints "PORT <n>" once
ready, and writes each message it accepts to <folder>/<n>.json: the envelope,
the raw message, and the headers and text as Python's own mail parser reads
them, so the tests check our messages against a parser that is not ours.

--reply DOMAIN CODE TEXT makes it answer RCPT TO for that domain with the
given reply instead of accepting it.
"""

import argparse
import asyncio
import email
import email.policy
import email.utils
import json
import os
import sys

from aiosmtpd.smtp import SMTP


class Sink:
    def __init__(self, folder, replies):
        self.folder = folder
        self.replies = replies
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, options):
        domain = address.rpartition("@")[2].lower()
        if domain in self.replies:
            return self.replies[domain]
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        raw = envelope.original_content
        parsed = email.message_from_bytes(raw, policy=email.policy.default)
        try:
            date = email.utils.parsedate_to_datetime(parsed["Date"]).isoformat()
        except (TypeError, ValueError):
            date = ""
        body = parsed.get_body(preferencelist=("plain",))
        sender = parsed["From"].addresses[0] if parsed["From"] else None
        record = {
            "helo": session.host_name,
            "mail_from": envelope.mail_from,
            "rcpt_tos": envelope.rcpt_tos,
            "raw": raw.decode("ascii", errors="replace"),
            "headers": {name: str(value) for name, value in parsed.items()},
            "from_name": sender.display_name if sender else "",
            "from_address": sender.addr_spec if sender else "",
            "date": date,
            "charset": body.get_content_charset() if body else "",
            # The raw message above keeps its CRLFs; the text is given with
            # plain line feeds, as a reader sees it.
            "text": body.get_content().replace("\r\n", "\n") if body else "",
            "defects": [type(defect).__name__ for defect in parsed.defects],
        }
        self.count += 1
        path = os.path.join(self.folder, "%d.json" % self.count)
        with open(path + ".part", "w", encoding="utf-8") as out:
            json.dump(record, out)
        os.replace(path + ".part", path)
        return "250 Message accepted"


async def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--reply", nargs=3, action="append", default=[],
                        metavar=("DOMAIN", "CODE", "TEXT"))
    args = parser.parse_args()
    replies = {domain.lower(): "%s %s" % (code, text) for domain, code, text in args.reply}
    handler = Sink(args.folder, replies)
    loop = asyncio.get_running_loop()
    server = await loop.create_server(lambda: SMTP(handler, hostname="sink.test"),
                                      host="127.0.0.1", port=0)
    print("PORT %d" % server.sockets[0].getsockname()[1], flush=True)
    # Ends when the test closes our input or kills us.
    await loop.run_in_executor(None, sys.stdin.read)
    server.close()


asyncio.run(main())
