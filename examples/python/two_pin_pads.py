#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Waits for a key at two PIN pads at once, from one asyncio loop, for half a minute: two_pin_pads.py PORT PORT"""
import asyncio
import sys

from quorvel import Dsp, Error, Gky, Link


async def serve(lane: int, port: str) -> None:
    # What is answered at once blocks for as long as the line takes, so it goes to a thread; waiting does not.
    link = await asyncio.to_thread(Link, port)
    with link, await asyncio.to_thread(link.open) as session:
        await asyncio.to_thread(session.run, Dsp(f"LANE {lane}"))
        async with asyncio.timeout(30):  # a cancelled task cancels the PIN pad, too
            print(f"lane {lane}:", (await session.start(Gky())).require().name, flush=True)


async def main(ports: list[str]) -> None:
    await asyncio.gather(*(serve(lane, port) for lane, port in enumerate(ports, 1)))


if __name__ == "__main__":
    try:
        asyncio.run(main(sys.argv[1:]))
    except TimeoutError:
        sys.exit("nobody has pressed a key")
    except Error as error:
        sys.exit(str(error))
