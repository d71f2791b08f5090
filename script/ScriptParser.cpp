// The parser: reads the whole text once, checks its syntax and builds the
// tree of functions, declarations and statement blocks. Expressions are only
// checked here; the engine reads them again when it runs them.
#include <cinttypes>
#include <cstdio>
#include <memory>

#include "script/ScriptErrors.h"
#include "script/ScriptFunc.h"
#include "script/ScriptTokens.h"

namespace {

// Appends a new object to a list; the list owns it from then on.
template <class T>
T* Adopt(TSCRIPTOBJLIST* list) {
    std::unique_ptr<T> object(new T);
    list->push_back(object.get());
    return object.release();
}

}  // namespace

CONXScriptFunc::~CONXScriptFunc() {
    // Newest first.
    for (auto it = m_locals.rbegin(); it != m_locals.rend(); ++it) delete *it;
    for (auto it = m_params.rbegin(); it != m_params.rend(); ++it) delete *it;
}

int32_t CONXScriptFunc::FindNameIn(const char* name, TSCRIPTOBJLIST* params, TSCRIPTOBJLIST* locals,
                                   TSCRIPTOBJLIST* outer, int32_t* which,
                                   CONXScriptObject** object) {
    if (m_pDelegate) return m_pDelegate->FindNameIn(name, params, locals, outer, which, object);
    TSCRIPTOBJLIST* lists[3] = {params, locals, outer};
    for (int32_t l = 0; l < 3; l++) {
        if (!lists[l]) continue;
        // Last to first: a later declaration hides an earlier one.
        for (size_t i = lists[l]->size(); i-- > 0;) {
            CONXScriptObject* o = (*lists[l])[i];
            if (ScriptNamesEqual(o->Name().c_str(), name)) {
                if (which) *which = l;
                if (object) *object = o;
                return (int32_t)i;
            }
        }
    }
    if (object) *object = nullptr;
    return -1;
}

int32_t CONXScriptFunc::FindName(const char* name, int32_t* which, CONXScriptObject** object) {
    if (m_pDelegate) return m_pDelegate->FindName(name, which, object);
    return FindNameIn(name, &m_params, &m_locals, &m_outer, which, object);
}

void CONXScriptFunc::AddParameter(CONXScriptObject* parameter) {
    if (m_pDelegate) return m_pDelegate->AddParameter(parameter);
    m_params.push_back(parameter);
}

CONXScriptObject* CONXScriptFunc::GetParameter(size_t index) {
    if (m_pDelegate) return m_pDelegate->GetParameter(index);
    return index < m_params.size() ? m_params[index] : nullptr;
}

void CONXScriptFunc::AddOuterNames(const TSCRIPTOBJLIST& names) {
    if (m_pDelegate) return m_pDelegate->AddOuterNames(names);
    m_outer.insert(m_outer.end(), names.begin(), names.end());
}

size_t CONXScriptFunc::GetParameterCount() {
    if (m_pDelegate) return m_pDelegate->GetParameterCount();
    return m_params.size();
}

bool CONXScriptFunc::CheckArgumentCount(size_t count) {
    if (m_pDelegate) return m_pDelegate->CheckArgumentCount(count);
    return count == m_params.size();
}

uint32_t CONXScriptFunc::ParseBody(CONXScriptCursor* cursor, uint32_t depth) {
    if (m_pDelegate) return m_pDelegate->ParseBody(cursor, depth);
    return ParseBlock(cursor, depth, &m_statements);
}

uint32_t CONXScriptIfStatement::ParseElseBlock(CONXScriptCursor* cursor, uint32_t depth) {
    return ParseBlock(cursor, depth, &m_elseStatements);
}

uint32_t CONXScriptFunc::ParseBlock(CONXScriptCursor* cursor, uint32_t depth,
                                    TSCRIPTSTMTLIST* statements) {
    if (m_pDelegate) return m_pDelegate->ParseBlock(cursor, depth, statements);
    if (cursor->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    uint64_t p = cursor->position;
    TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    if (depth == 0 && t->kind == SCRIPT_TOK_END) {
        cursor->position = p;
        return 0;
    }
    if (depth != 0 && IsPunct(t, '}')) {
        cursor->position = p;
        return 0;
    }
    for (;;) {
        uint32_t err = ParseStatement(cursor, depth, statements, t, p);
        if (err) return err;
        p = cursor->position;
        t = cursor->Next();
        if (t->error) return t->error;
        // At top level a stray "}" ends the program text and the rest is ignored:
        // deliberate, the language always worked so.
        if (IsPunct(t, '}')) {
            cursor->position = p;
            return 0;
        }
        if (t->kind == SCRIPT_TOK_END) return 0;
    }
}

uint32_t CONXScriptFunc::ParseStatement(CONXScriptCursor* cursor, uint32_t depth,
                                        TSCRIPTSTMTLIST* statements, TSCRIPTTOKEN* first,
                                        uint64_t start) {
    uint32_t err;
    if (IsKeyword(first, SCRIPT_KW_VAR)) {
        // A declaration is no statement: its variable is made when the body is entered.
        CONXScriptVarTemplate* tmpl = Adopt<CONXScriptVarTemplate>(&m_locals);
        m_declares = true;
        if ((err = tmpl->Parse(cursor))) return err;
        const TSCRIPTTOKEN* t = cursor->Next();
        if (t->error) return t->error;
        return IsPunct(t, ';') ? 0 : SCRIPT_ERR_SYNTAX;
    }
    if (IsKeyword(first, SCRIPT_KW_FUNC)) return ParseFunction(cursor, depth);
    if (IsKeyword(first, SCRIPT_KW_IF)) return ParseConditional(cursor, depth, start, true, statements);
    if (IsKeyword(first, SCRIPT_KW_WHILE))
        return ParseConditional(cursor, depth, start, false, statements);
    statements->push_back(start);
    cursor->position = start;
    if ((err = ParseSimpleStatement(cursor))) return err;
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    return IsPunct(t, ';') ? 0 : SCRIPT_ERR_SYNTAX;
}

uint32_t CONXScriptFunc::ParseFunction(CONXScriptCursor* cursor, uint32_t depth) {
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    if (t->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
    // In the locals before its body is read, so that it can call itself.
    CONXScriptFunc* f = Adopt<CONXScriptFunc>(&m_locals);
    f->SetName(t->text.c_str());
    uint32_t err;
    if ((err = ExpectPunct(cursor, '('))) return err;
    // A nested function sees the enclosing names, not the enclosing parameters.
    f->AddOuterNames(m_outer);
    f->AddOuterNames(m_locals);
    t = cursor->Next();
    if (t->error) return t->error;
    if (!IsPunct(t, ')')) {
        for (;;) {
            if (IsKeyword(t, SCRIPT_KW_VAR)) {
                std::unique_ptr<CONXScriptVarTemplate> tmpl(new CONXScriptVarTemplate);
                f->AddParameter(tmpl.get());
                CONXScriptVarTemplate* raw = tmpl.release();
                if ((err = raw->Parse(cursor))) return err;
            } else if (IsKeyword(t, SCRIPT_KW_FUNC)) {
                t = cursor->Next();
                if (t->error) return t->error;
                if (t->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
                std::unique_ptr<CONXScriptFunc> param(new CONXScriptFunc);
                param->SetName(t->text.c_str());
                param->m_isParameter = true;
                f->AddParameter(param.get());
                param.release();
            } else {
                return SCRIPT_ERR_SYNTAX;
            }
            t = cursor->Next();
            if (t->error) return t->error;
            if (IsPunct(t, ')')) break;
            if (!IsPunct(t, ',')) return SCRIPT_ERR_SYNTAX;
            t = cursor->Next();
            if (t->error) return t->error;
        }
    }
    if ((err = ExpectPunct(cursor, '{'))) return err;
    if ((err = f->ParseBody(cursor, depth + 1))) return err;
    return ExpectPunct(cursor, '}');
}

uint32_t CONXScriptFunc::ParseConditional(CONXScriptCursor* cursor, uint32_t depth, uint64_t start,
                                          bool isIf, TSCRIPTSTMTLIST* statements) {
    statements->push_back(start);
    CONXScriptFunc* block;
    if (isIf) block = Adopt<CONXScriptIfStatement>(&m_locals);
    else block = Adopt<CONXScriptWhileStatement>(&m_locals);
    char name[32];
    snprintf(name, sizeof name, "@N%" PRIu64, start);
    block->SetName(name);
    uint32_t err;
    if ((err = ExpectPunct(cursor, '('))) return err;
    if ((err = ParseExpression(cursor))) return err;
    if ((err = ExpectPunct(cursor, ')'))) return err;
    if ((err = ExpectPunct(cursor, '{'))) return err;
    // Blocks see everything of the enclosing function, its parameters included.
    block->AddOuterNames(m_outer);
    block->AddOuterNames(m_locals);
    block->AddOuterNames(m_params);
    if ((err = block->ParseBody(cursor, depth + 1))) return err;
    if ((err = ExpectPunct(cursor, '}'))) return err;
    if (!isIf) return 0;
    uint64_t p = cursor->position;
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    if (!IsKeyword(t, SCRIPT_KW_ELSE)) {
        cursor->position = p;
        return 0;
    }
    if ((err = ExpectPunct(cursor, '{'))) return err;
    if ((err = static_cast<CONXScriptIfStatement*>(block)->ParseElseBlock(cursor, depth + 1)))
        return err;
    return ExpectPunct(cursor, '}');
}

uint32_t CONXScriptFunc::ParseSimpleStatement(CONXScriptCursor* cursor) {
    if (m_pDelegate) return m_pDelegate->ParseSimpleStatement(cursor);
    uint64_t start = cursor->position;
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    if (t->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
    std::string name = t->text;
    uint64_t p = cursor->position;
    if (ScriptNamesEqual(name.c_str(), m_name.c_str())) {
        t = cursor->Next();
        if (t->error) return t->error;
        if (OpClass(t) & SCRIPT_OPCLASS_ASSIGN) return ParseExpression(cursor);
        cursor->position = p;
    }
    CONXScriptObject* object = nullptr;
    if (FindName(name.c_str(), nullptr, &object) < 0) return SCRIPT_ERR_UNKNOWNIDENT;
    uint32_t kind = object->GetObjectKind();
    if (kind == SCRIPT_OBJ_TEMPLATE || kind == SCRIPT_OBJ_VARIABLE) {
        t = cursor->Next();
        if (t->error) return t->error;
        if (!(OpClass(t) & SCRIPT_OPCLASS_ASSIGN)) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        return ParseExpression(cursor);
    }
    cursor->position = start;
    return ParseExpression(cursor);
}

uint32_t CONXScriptFunc::ParseArguments(CONXScriptCursor* cursor) {
    uint32_t err;
    if ((err = ExpectPunct(cursor, '('))) return err;
    uint64_t p = cursor->position;
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    if (IsPunct(t, ')')) return 0;
    cursor->position = p;
    for (;;) {
        p = cursor->position;
        t = cursor->Next();
        if (t->error) return t->error;
        if (t->kind == SCRIPT_TOK_OP && t->op == SCRIPT_OP_AND) {
            t = cursor->Next();  // "&" name: by reference
            if (t->error) return t->error;
            if (t->kind != SCRIPT_TOK_IDENT) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        } else {
            cursor->position = p;
            if ((err = ParseExpression(cursor))) return err;
        }
        t = cursor->Next();
        if (t->error) return t->error;
        if (IsPunct(t, ')')) return 0;
        if (!IsPunct(t, ',')) return SCRIPT_ERR_UNEXPECTEDTOKEN;
    }
}

uint32_t CONXScriptFunc::ParseExpression(CONXScriptCursor* cursor) {
    if (m_pDelegate) return m_pDelegate->ParseExpression(cursor);
    if (cursor->StackLow()) return SCRIPT_ERR_OUTOFMEMORY;
    const TSCRIPTTOKEN* t = cursor->Next();
    if (t->error) return t->error;
    uint32_t err;
    if (t->kind == SCRIPT_TOK_OP) {
        if (!(OpClass(t) & SCRIPT_OPCLASS_UNARY)) return SCRIPT_ERR_UNEXPECTEDTOKEN;
        return ParseExpression(cursor);
    }
    switch (t->kind) {
    case SCRIPT_TOK_PUNCT:
        if (t->punct != '(') return SCRIPT_ERR_UNEXPECTEDTOKEN;
        if ((err = ParseExpression(cursor))) return err;
        if ((err = ExpectPunct(cursor, ')'))) return err;
        break;
    case SCRIPT_TOK_STRING:
    case SCRIPT_TOK_DEC:
    case SCRIPT_TOK_HEX:
    case SCRIPT_TOK_BIN:
        break;
    case SCRIPT_TOK_IDENT: {
        CONXScriptObject* object = nullptr;
        uint8_t typeCode = t->typeCode;
        if (FindName(t->text.c_str(), nullptr, &object) >= 0) {
            if (object->GetObjectKind() == SCRIPT_OBJ_FUNCTION) {
                if ((err = ParseArguments(cursor))) return err;
            }
        } else if (typeCode) {
            if ((err = ExpectPunct(cursor, '('))) return err;
            if ((err = ParseExpression(cursor))) return err;
            if ((err = ExpectPunct(cursor, ')'))) return err;
        } else {
            return SCRIPT_ERR_UNKNOWNIDENT;
        }
        break;
    }
    default:
        return SCRIPT_ERR_UNEXPECTEDTOKEN;
    }
    uint64_t p = cursor->position;
    t = cursor->Next();
    if (t->error) return t->error;
    if (IsBinary(t)) return ParseExpression(cursor);
    cursor->position = p;
    return 0;
}
