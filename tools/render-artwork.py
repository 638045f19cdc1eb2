#!/usr/bin/python3
"""Renders the drawings of resources/artwork: a picture as PNG, the waiting mark as GIF.

render-artwork.py icon DRAWING PNG --height PIXELS [--variant CLASS...]
render-artwork.py animation DRAWING GIF --height PIXELS [--variant CLASS...]

A variant is a list of classes for the drawing's root, told apart by the style sheet of
family.svg, which stands beside the drawing.
"""

import argparse
import io
import subprocess
import xml.etree.ElementTree as ET
from pathlib import Path

from PIL import Image

SVG = "http://www.w3.org/2000/svg"
FRAMES = 12
FRAME_MS = 80
# Index 0 is transparent; the others run from white to the mark's colour.
SHADES = 64
PALETTE = 256

ET.register_namespace("", SVG)


def compose(drawing, variant=()):
    """The drawing as an SVG tree with the family's palette and marks, in the given variant."""
    svg = ET.parse(drawing).getroot()
    svg.set("class", " ".join([svg.get("class", ""), *variant]).strip())
    svg.extend(ET.parse(drawing.with_name("family.svg")).getroot())
    return svg


def render(svg, height):
    """The PNG of an SVG tree, as bytes."""
    return subprocess.run(
        ["rsvg-convert", "--keep-aspect-ratio", f"--height={height}", "--format=png"],
        input=ET.tostring(svg), stdout=subprocess.PIPE, check=True).stdout


def turned(svg, degrees, height):
    svg.find(".//*[@id='ring']").set("transform", f"rotate({degrees} 12 12)")
    return Image.open(io.BytesIO(render(svg, height))).convert("RGBA")


def on_white(frame):
    """GIF knows no half-transparent pixel: each becomes the shade that it has on white."""
    *colour, _ = max((pixel for _, pixel in frame.getcolors(frame.width * frame.height)),
                     key=lambda pixel: pixel[3])
    image = frame.getchannel("A").point(lambda alpha: alpha * (SHADES - 1) // 255)
    image.putpalette([255 + (channel - 255) * shade // (SHADES - 1)
                      for shade in range(SHADES) for channel in colour])
    return image


def with_palette(image):
    """The same picture with a palette, which is read in a third of the time; None if it has too many
    colours for one."""
    colours = image.getcolors(PALETTE)
    if colours is None:
        return None
    palette = [pixel for _, pixel in colours]
    numbers = {pixel: number for number, pixel in enumerate(palette)}
    flat = Image.new("P", image.size)
    flat.putdata([numbers[pixel] for pixel in image.getdata()])
    flat.putpalette([channel for pixel in palette for channel in pixel[:3]])
    flat.info["transparency"] = bytes(pixel[3] for pixel in palette)
    return flat


def icon(arguments):
    rendered = render(compose(arguments.drawing, arguments.variant), arguments.height)
    flat = with_palette(Image.open(io.BytesIO(rendered)).convert("RGBA"))
    if flat:
        flat.save(arguments.output, "PNG", optimize=True)
    else:
        arguments.output.write_bytes(rendered)


def animation(arguments):
    svg = compose(arguments.drawing, arguments.variant)
    first, *others = (on_white(turned(svg, 360 * frame // FRAMES, arguments.height))
                      for frame in range(FRAMES))
    first.save(arguments.output, save_all=True, append_images=others, duration=FRAME_MS,
               loop=0, transparency=0, disposal=2, optimize=False)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(required=True)
    for command in (icon, animation):
        options = commands.add_parser(command.__name__)
        options.set_defaults(run=command)
        options.add_argument("drawing", type=Path)
        options.add_argument("output", type=Path)
        options.add_argument("--height", type=int, required=True)
        options.add_argument("--variant", nargs="*", default=[])
    arguments = parser.parse_args()
    arguments.run(arguments)


if __name__ == "__main__":
    main()
