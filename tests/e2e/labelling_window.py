"""Where things are in the workstation's window on a screen, and what a person does there, for those who drive it."""
import math

FRONT_FRAME = (74, 136, 199)  # around the viewer in front
FRAME, SLIDER = 2, 13  # points of the pane that are not the image
COLUMNS = ROWS = 320  # of the phantom's sagittal slices


def is_label(red, green, blue):
    """The plug-in's labels: a warm yellow that nothing else on the screen has."""
    return red > 220 and 150 < green < 215 and blue < 110


class Image:
    """The front viewer's image on the screen, as it is fitted when a study opens."""

    def __init__(self, frame):
        left, top, right, bottom = frame
        self.left, self.top = left + FRAME, top + FRAME
        self.width, self.height = right - left + 1 - 2 * FRAME - SLIDER, bottom - top + 1 - 2 * FRAME
        self.scale = min(self.width / COLUMNS, self.height / ROWS)

    def on_screen(self, pixel):
        x = self.left + self.width / 2 + (pixel[0] - (COLUMNS - 1) / 2) * self.scale
        y = self.top + self.height / 2 + (pixel[1] - (ROWS - 1) / 2) * self.scale
        return math.floor(x), math.floor(y)

    def pixel_at(self, point):
        """Where in the slice a pointer at this point of the screen is; between pixels, mostly."""
        return [(point[0] - self.left - self.width / 2) / self.scale + (COLUMNS - 1) / 2,
                (point[1] - self.top - self.height / 2) / self.scale + (ROWS - 1) / 2]


def points_between(start, end, steps=8):
    return [(start[0] + (end[0] - start[0]) * i // steps, start[1] + (end[1] - start[1]) * i // steps)
            for i in range(steps + 1)]


def main_window(screen):
    return screen.do("search", "--onlyvisible", "--name", "Vertana workstation").split()[-1]


def quit_program(screen):
    # There is no window manager here, which would give the keyboard back to the main window.
    screen.do("windowfocus", "--sync", main_window(screen), "key", "ctrl+q")
