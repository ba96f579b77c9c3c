"""The texts in C++ sources, for those who check that each message is told of elsewhere."""
import re

token = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\((.*?)\)\1"|"((?:\\.|[^"\\])*)"|\'(?:\\.|[^\'\\])\'', re.S)
escapes = {"n": "\n", '"': '"', "\\": "\\", "t": "\t"}


def words_of(text):
    return re.findall(r"\w+", text)


def literals_of(source):
    """(text, code before it in its statement, the statement's code) of each literal of C++; neighbours are one."""
    code, texts = "", []
    end = 0
    for found in token.finditer(source):
        code += source[end:found.start()]
        end = found.end()
        text = found.group(2) if found.group(2) is not None else found.group(3)
        if text is None:
            continue
        if found.group(2) is None:
            text = re.sub(r"\\(.)", lambda escape: escapes.get(escape.group(1), escape.group(1)), text)
        if texts and code[texts[-1][1]:].strip() == "\x00":
            texts[-1] = (texts[-1][0] + text, texts[-1][1])
        else:
            texts.append((text, len(code)))
            code += "\x00"
    code += source[end:]
    for text, place in texts:
        begin = code.rfind(";", 0, place) + 1
        finish = code.find(";", place)
        yield text, code[begin:place], code[begin:finish if finish >= 0 else len(code)]


def is_inside_call(before, names):
    """Whether the code before a place leaves a parenthesis open that one of these calls opened."""
    depth = 0
    for index in range(len(before) - 1, -1, -1):
        if before[index] in ")}":
            depth += 1
        elif before[index] in "({":
            if depth == 0 and re.search(rf"\b({'|'.join(names)})$", before[:index]):
                return True
            depth = max(0, depth - 1)
    return False


def code_of(path):
    """A source without its preprocessor lines."""
    return re.sub(r"^\s*#.*$", "", path.read_text(), flags=re.MULTILINE)


def rows(words, length):
    return {tuple(words[i:i + length]) for i in range(len(words) - length + 1)}
