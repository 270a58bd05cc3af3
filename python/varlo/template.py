"""Templates of frames: a scene in which @t@, @frame@, @frames@ and @(EXPRESSION)@ stand for numbers.

An expression is evaluated from its syntax tree. It knows the names and functions below and nothing else, so that a
template runs no code; all its numbers are doubles, so that no power takes long.
"""

import ast
import math
import operator
import re
from collections.abc import Callable, Mapping

from varlo.run import VarloError

CONSTANTS = {"pi": math.pi, "tau": math.tau, "e": math.e}
FUNCTIONS: dict[str, Callable[..., float]] = {
    **{name: getattr(math, name) for name in ("sin", "cos", "tan", "asin", "acos", "atan", "atan2", "sinh", "cosh",
                                              "tanh", "exp", "log", "sqrt", "hypot", "floor", "ceil", "degrees",
                                              "radians", "fmod", "pow")},
    "abs": abs, "min": min, "max": max, "round": round,
}
BINARY: dict[type[ast.operator], Callable[[float, float], float]] = {
    ast.Add: operator.add, ast.Sub: operator.sub, ast.Mult: operator.mul, ast.Div: operator.truediv,
    ast.FloorDiv: operator.floordiv, ast.Mod: operator.mod, ast.Pow: math.pow,
}
COMPARE: dict[type[ast.cmpop], Callable[[float, float], bool]] = {
    ast.Lt: operator.lt, ast.LtE: operator.le, ast.Gt: operator.gt, ast.GtE: operator.ge, ast.Eq: operator.eq,
    ast.NotEq: operator.ne,
}
LONGEST = 1000  # characters of an expression; it bounds its depth too
PLACE = re.compile(r"@(?:([A-Za-z_]\w*)|\((.*?)\))@")


def evaluate(text: str, names: Mapping[str, float]) -> float:
    """The value of an expression, always finite. Raises `VarloError` for what is none, or has none."""
    try:
        if len(text) > LONGEST:
            raise VarloError(f"an expression may have at most {LONGEST} characters")
        value = value_of(ast.parse(text.strip(), mode="eval").body, {**CONSTANTS, **names})
    except SyntaxError as error:
        raise VarloError(error.msg) from error
    except (ArithmeticError, ValueError, TypeError) as error:
        raise VarloError(str(error)) from error
    except (RecursionError, MemoryError) as error:
        raise VarloError("it is nested too deeply") from error
    if not math.isfinite(value):
        raise VarloError(f"its value is {value}")
    return value


def value_of(node: ast.expr, names: Mapping[str, float]) -> float:
    match node:
        case ast.Constant(value=int() | float() as number) if not isinstance(number, bool):
            return float(number)
        case ast.Name(id=name) if name in names:
            return names[name]
        case ast.UnaryOp(op=ast.USub() | ast.UAdd() as sign, operand=operand):
            value = value_of(operand, names)
            return -value if isinstance(sign, ast.USub) else value
        case ast.BinOp(left=left, op=op, right=right) if type(op) in BINARY:
            return BINARY[type(op)](value_of(left, names), value_of(right, names))
        case ast.Call(func=ast.Name(id=name), args=arguments, keywords=[]) if name in FUNCTIONS:
            return float(FUNCTIONS[name](*[value_of(argument, names) for argument in arguments]))
        case ast.IfExp(test=ast.Compare() as test, body=body, orelse=other):
            return value_of(body if holds(test, names) else other, names)
        case ast.Name(id=name):
            raise VarloError(f"{name} is not known here; there are {', '.join(sorted(names))}")
        case ast.Call(func=ast.Name(id=name)) if name not in FUNCTIONS:
            raise VarloError(f"{name} is not known here; there are {', '.join(sorted(FUNCTIONS))}")
    raise VarloError("only arithmetic is allowed")


def holds(test: ast.Compare, names: Mapping[str, float]) -> bool:
    values = [value_of(node, names) for node in (test.left, *test.comparators)]
    if any(type(op) not in COMPARE for op in test.ops):
        raise VarloError("only arithmetic is allowed")
    return all(COMPARE[type(op)](a, b) for op, a, b in zip(test.ops, values, values[1:]))


def number(value: float) -> str:
    """As the language reads it: whole numbers without a point, others as short as reads back the same."""
    return str(int(value)) if value == int(value) and abs(value) < 1e15 else repr(value)


def fill(template: str, frame: int, frames: int) -> str:
    """The scene of one of `frames` frames, counted from 0. Raises `VarloError`, which tells the line."""
    names = {"t": frame / max(frames - 1, 1), "frame": float(frame), "frames": float(frames)}

    def put(found: re.Match[str]) -> str:
        text = found[1] or found[2]
        try:
            return number(evaluate(text, names))
        except VarloError as error:
            line = template.count("\n", 0, found.start()) + 1
            raise VarloError(f"{line}: {found[0]}: {error}") from error

    return PLACE.sub(put, template)
