"""What varlo cannot say of a scene, each thing once."""

from collections.abc import Callable


class Notes:
    """Remarks in the order in which they came up."""

    def __init__(self) -> None:
        self._names: dict[str, list[str]] = {}

    def add(self, remark: str, name: str = "") -> None:
        """Adds a remark; `name` is the object or material that it is about."""
        names = self._names.setdefault(remark, [])
        if name and name not in names:
            names.append(name)

    def lines(self) -> list[str]:
        """A line for each remark, with the first few names."""
        lines = []
        for remark, names in self._names.items():
            more = f" and {len(names) - 3} more" if len(names) > 3 else ""
            lines.append(f"varlo: {remark}" + (f" ({', '.join(names[:3])}{more})" if names else ""))
        return lines

    def report(self, report: Callable[[set[str], str], None]) -> None:
        """Hands each line to a `report` of Blender's, which shows it in the info panel."""
        for line in self.lines():
            report({"WARNING"}, line)
