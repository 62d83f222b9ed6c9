"""A mail server of the loopback, and a recipient who gets mail."""

import contextlib

from aiosmtpd.controller import Controller


def add_recipient(data, to, password="", index=0):
    data.add_recipient("Typist", password, index, method=0, to=to)

@contextlib.contextmanager
def server(address, **options):
    """Collects what arrives; refuses recipients whose address says so."""
    letters = []

    class Handler:
        async def handle_RCPT(self, server, session, envelope, to, _):
            if "refuse" in to:
                return "550 no such user"
            envelope.rcpt_tos.append(to)
            return "250 ok"

        async def handle_DATA(self, server, session, envelope):
            letters.append((bool(session.authenticated), envelope))
            return "250 taken"

    controller = Controller(Handler(), hostname=address, port=25, **options)
    controller.start()
    try:
        yield letters
    finally:
        controller.stop()
